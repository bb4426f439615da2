#include "support/temp_folder.h"

#include <stdlib.h>
#include <string.h>
#include <sys/xattr.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace test {

TempFolder::TempFolder() {
    std::string pattern = (fs::temp_directory_path() / "folder.XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder: " + pattern);
    path_ = pattern;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    // A test may have made a folder unreadable.
    for (auto i = fs::recursive_directory_iterator(
             path_, fs::directory_options::skip_permission_denied, ignored);
         !ignored && i != fs::recursive_directory_iterator(); i.increment(ignored)) {
        if (i->is_directory(ignored) && !i->is_symlink(ignored)) {
            fs::permissions(i->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
        }
    }
    fs::remove_all(path_, ignored);
}

std::string TempFolder::file(const std::string& name, const std::string& content) {
    const std::string full = path(name);
    fs::create_directories(fs::path(full).parent_path());
    std::ofstream(full, std::ios::binary) << content;
    return full;
}

std::string TempFolder::folder(const std::string& name) {
    const std::string full = path(name);
    fs::create_directories(full);
    return full;
}

std::string TempFolder::link(const std::string& name, const std::string& target) {
    const std::string full = path(name);
    fs::create_directories(fs::path(full).parent_path());
    fs::create_symlink(target, full);
    return full;
}

bool TempFolder::finder_info(const std::string& name, unsigned flags, const char* type) {
    unsigned char info[32] = {};
    memcpy(info, type, 4);
    info[8] = static_cast<unsigned char>(flags >> 8);
    info[9] = static_cast<unsigned char>(flags);
    return lsetxattr(path(name).c_str(), "user.com.apple.FinderInfo", info, sizeof info, 0) == 0;
}

std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

}  // namespace test
