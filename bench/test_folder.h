// A folder of many entries, the same for every run: 78 % files, 15 % folders, 7 % symbolic links
// (to a folder, to a file, dangling); 5 % dot names; numbers, mixed case, blanks and non-Latin
// names.
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
    // The folder that holds this one and nothing else.
    const std::string& holder() const { return holder_; }
    const std::vector<std::string>& names() const { return names_; }

  private:
    std::string holder_, path_;
    std::vector<std::string> names_;
};

}  // namespace bench
