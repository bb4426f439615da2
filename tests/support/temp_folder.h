// A folder for one test. The destructor removes it with everything in it.
#pragma once

#include <string>

namespace test {

class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // The folder's path, without a trailing slash; with `name`, the path of that entry.
    const std::string& path() const { return path_; }
    std::string path(const std::string& name) const { return path_ + "/" + name; }

    // Each of these makes an entry and returns its path. Names may contain slashes; parents are
    // made.
    std::string file(const std::string& name, const std::string& content = "");
    std::string folder(const std::string& name);
    std::string link(const std::string& name, const std::string& target);

    // Sets the 32 bytes of Finder information with these Finder flags and this file type. False
    // where the file system stores no extended attributes, which is a failure of the test.
    bool finder_info(const std::string& name, unsigned flags, const char* type = "\0\0\0\0");

  private:
    std::string path_;
};

inline constexpr char no_attributes[] =
    "this test needs a temporary folder (TMPDIR) with extended attributes of users";

// The bytes of a file, empty if it cannot be read.
std::string read_file(const std::string& path);

}  // namespace test
