#include "settings_ui/example_folder.h"

#include <stdlib.h>
#include <sys/xattr.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

constexpr const char* folders[] = {"Letters", "Pictures/Garden"};
constexpr const char* files[] = {"Address.txt", "Recipes.txt", "Letters/Anna.txt",
                                 "Letters/Ben.txt", ".hidden"};
constexpr const char* labelled = "Recipes.txt";

// A red label, in the bytes of the Finder's information.
void set_label(const std::string& path) {
    char information[32] = {};
    information[9] = 6 << 1;
    setxattr(path.c_str(), "user.com.apple.FinderInfo", information, sizeof information, 0);
}

}  // namespace

ExampleFolder::ExampleFolder() {
    std::error_code error;
    std::string made = (fs::temp_directory_path(error) / "delvio-example.XXXXXX").string();
    if (error || !mkdtemp(made.data())) return;
    parent_ = made;
    path_ = parent_ + "/Example";
    for (const char* name : folders) fs::create_directories(path_ + "/" + name, error);
    for (const char* name : files) std::ofstream(path_ + "/" + name) << name << "\n";
    set_label(path_ + "/" + labelled);
}

ExampleFolder::~ExampleFolder() {
    std::error_code ignored;
    if (!parent_.empty()) fs::remove_all(parent_, ignored);
}
