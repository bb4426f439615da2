// A folder of the kinds of files that settings treat differently, for the example menu.
#pragma once

#include <string>

// Makes the folder in the temporary folder; the destructor removes it.
class ExampleFolder {
  public:
    ExampleFolder();
    ~ExampleFolder();
    ExampleFolder(const ExampleFolder&) = delete;
    ExampleFolder& operator=(const ExampleFolder&) = delete;

    // Empty when it could not be made.
    const std::string& path() const { return path_; }

  private:
    std::string parent_, path_;
};
