#include "settings_ui/example_folder.h"

#include <host/text.h>
#include <stdlib.h>
#include <sys/xattr.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

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
    path_ = parent_ + "/" + translated("Example");
    const std::string letters = path_ + "/" + translated("Letters");
    const std::string pictures = path_ + "/" + translated("Pictures");
    const std::string labelled = path_ + "/" + translated("Recipes") + ".txt";
    const std::string address = path_ + "/" + translated("Address") + ".txt";
    for (const auto& name : {letters, pictures + "/1"}) fs::create_directories(name, error);
    for (const auto& name : {address, labelled, letters + "/1.txt", path_ + "/.hidden"}) {
        std::ofstream(name) << "\n";
    }
    set_label(labelled);
}

ExampleFolder::~ExampleFolder() {
    std::error_code ignored;
    if (!parent_.empty()) fs::remove_all(parent_, ignored);
}
