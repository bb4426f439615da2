#include "desktop/desktop_entries.h"

#include <gio/gdesktopappinfo.h>

#include <utility>

#include "desktop/glib_owners.h"
#include "desktop/installed_applications.h"
#include "desktop/small_files.h"

namespace files {

namespace {

const size_t largest_entry = 256 * 1024;

// The keys that count; an empty owner for what is no entry of an application.
KeyFileOwner application_keys(const std::string& content) {
    KeyFileOwner keys(g_key_file_new());
    if (!g_key_file_load_from_data(keys.get(), content.data(), content.size(), G_KEY_FILE_NONE,
                                   nullptr)) {
        return nullptr;
    }
    const TextOwner type(g_key_file_get_string(keys.get(), G_KEY_FILE_DESKTOP_GROUP,
                                               G_KEY_FILE_DESKTOP_KEY_TYPE, nullptr));
    return g_strcmp0(type.get(), G_KEY_FILE_DESKTOP_TYPE_APPLICATION) == 0 ? std::move(keys)
                                                                           : nullptr;
}

bool flag_of(GKeyFile* keys, const char* key) {
    return g_key_file_get_boolean(keys, G_KEY_FILE_DESKTOP_GROUP, key, nullptr);
}

// What is not shown in menus still stands for the program while that runs.
bool is_shown(GKeyFile* keys, const std::string& path) {
    return !flag_of(keys, G_KEY_FILE_DESKTOP_KEY_NO_DISPLAY) || is_running_application(path);
}

}  // namespace

DesktopEntry desktop_entry_at(const std::string& path) {
    DesktopEntry entry = {};
    struct stat status;
    std::string content;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return entry;
    if (!read_small_file(path.c_str(), largest_entry, &content)) return entry;
    const KeyFileOwner keys = application_keys(content);
    if (!keys || flag_of(keys.get(), G_KEY_FILE_DESKTOP_KEY_HIDDEN)) return entry;

    const bool installed = is_installed_entry(path, status);
    entry.may_start = installed || access(path.c_str(), X_OK) == 0;
    if (entry.may_start && is_shown(keys.get(), path)) {
        entry.standing = installed ? Standing::application : Standing::program;
    }
    const TextOwner name(g_key_file_get_locale_string(
        keys.get(), G_KEY_FILE_DESKTOP_GROUP, G_KEY_FILE_DESKTOP_KEY_NAME, nullptr, nullptr));
    if (name) entry.name = name.get();
    return entry;
}

}  // namespace files
