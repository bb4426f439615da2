// A folder for one test, removed with all that is in it when the object goes.
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

    // Each makes an entry (names may contain slashes: parents are made) and returns its path.
    std::string file(const std::string& name, const std::string& content = "");
    std::string folder(const std::string& name);
    std::string link(const std::string& name, const std::string& target);

    // The 32 bytes of Finder information with these Finder flags and file type.
    // False where the file system keeps no extended attributes.
    bool finder_info(const std::string& name, unsigned flags, const char* type = "\0\0\0\0");

  private:
    std::string path_;
};

// The bytes of a file, empty if it cannot be read.
std::string read_file(const std::string& path);

}  // namespace test
