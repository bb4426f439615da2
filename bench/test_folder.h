// A folder with many entries, the same in every run: 78 % files, 15 % folders, 7 % symbolic links
// (to a folder, to a file, dangling). 5 % have dot names. The names include numbers, mixed case,
// blanks and non-Latin letters.
#pragma once

#include <string>
#include <vector>

namespace bench {

class TestFolder {
  public:
    explicit TestFolder(int entries);
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::string& path() const { return path_; }
    // The folder that contains only this one.
    const std::string& holder() const { return holder_; }
    const std::vector<std::string>& names() const { return names_; }

  private:
    std::string holder_, path_;
    std::vector<std::string> names_;
};

}  // namespace bench
