#include "desktop/desktop_entries.h"

#include <sys/stat.h>
#include <unistd.h>

#include "desktop/entry_file.h"
#include "desktop/installed_applications.h"

namespace files {

DesktopEntry desktop_entry_at(const std::string& path) {
    DesktopEntry entry = {};
    struct stat status;
    const EntryFile* file = read_entry_file(path);
    if (!file || file->is_hidden || stat(path.c_str(), &status) != 0) return entry;
    entry.name = file->name;
    entry.icon = file->icon;
    // An entry that menus do not show still stands for its program while the program runs.
    const bool is_shown = file->is_displayed || is_running_application(path);

    const bool installed = is_installed_entry(path, status);
    entry.may_start = installed || access(path.c_str(), X_OK) == 0;
    if (entry.may_start && is_shown) {
        entry.standing = installed ? Standing::application : Standing::program;
    }
    return entry;
}

}  // namespace files
