#include "desktop/icon_names.h"

#include <gio/gio.h>
#include <sys/stat.h>

#include "desktop/desktop_entries.h"

namespace {

// Keys: a content type, or one of these marks and themed names.
const char place_mark = '@', entry_mark = '!';

const struct {
    GUserDirectory folder;
    const char* icon;
} special_folders[] = {
    {G_USER_DIRECTORY_DESKTOP, "user-desktop"},
    {G_USER_DIRECTORY_DOCUMENTS, "folder-documents"},
    {G_USER_DIRECTORY_DOWNLOAD, "folder-download"},
    {G_USER_DIRECTORY_MUSIC, "folder-music"},
    {G_USER_DIRECTORY_PICTURES, "folder-pictures"},
    {G_USER_DIRECTORY_PUBLIC_SHARE, "folder-publicshare"},
    {G_USER_DIRECTORY_TEMPLATES, "folder-templates"},
    {G_USER_DIRECTORY_VIDEOS, "folder-videos"},
};

const char* inode_type(mode_t mode) {
    switch (mode & S_IFMT) {
        case S_IFIFO:
            return "inode/fifo";
        case S_IFSOCK:
            return "inode/socket";
        case S_IFCHR:
            return "inode/chardevice";
        case S_IFBLK:
            return "inode/blockdevice";
        default:
            return nullptr;
    }
}

std::string folder_key(const std::string& path) {
    if (path == "/") return "@drive-harddisk";
    if (path == g_get_home_dir()) return "@user-home";
    for (const auto& special : special_folders) {
        const char* folder = g_get_user_special_dir(special.folder);
        if (folder && path == folder) return place_mark + std::string(special.icon);
    }
    return "@folder";
}

bool has_ending(const std::string& path, const char* ending) {
    return g_str_has_suffix(path.c_str(), ending);
}

// Names have no endings, but entries often give one all the same.
void drop_ending(std::string& name) {
    if (name.empty() || name[0] == '/') return;
    for (const char* ending : {".png", ".svg", ".xpm"}) {
        if (has_ending(name, ending)) return name.resize(name.size() - 4);
    }
}

// The icon that a desktop entry names, empty if it is none.
std::string entry_icon(const std::string& path) {
    GKeyFile* file = g_key_file_new();
    std::string icon;
    if (g_key_file_load_from_file(file, path.c_str(), G_KEY_FILE_NONE, nullptr)) {
        char* value = g_key_file_get_string(file, "Desktop Entry", "Icon", nullptr);
        if (value) icon = value;
        g_free(value);
    }
    g_key_file_unref(file);
    drop_ending(icon);
    return icon;
}

std::string type_key(const std::string& path, mode_t mode) {
    gboolean uncertain = FALSE;
    char* type = g_content_type_guess(path.c_str(), nullptr, 0, &uncertain);
    const std::string key = type ? type : "application/octet-stream";
    g_free(type);
    if (!uncertain || key != "application/octet-stream") return key;
    return mode & S_IXUSR ? "application/x-executable" : "text/plain";
}

std::string file_key(const std::string& path, const struct stat& entry) {
    const off_t largest_entry = 65536;
    if (has_ending(path, ".desktop") && entry.st_size < largest_entry) {
        switch (files::desktop_entry_at(path).standing) {
            case files::Standing::document:
                return "text/plain";
            case files::Standing::program:
                return "application/x-executable";
            case files::Standing::application:
                break;
        }
        const std::string icon = entry_icon(path);
        return icon.empty() ? "application/x-executable" : entry_mark + icon;
    }
    return type_key(path, entry.st_mode);
}

void append(std::vector<std::string>& names, const char* name) {
    if (!g_str_has_suffix(name, "-symbolic")) names.push_back(name);
}

}  // namespace

std::string icon_key(const std::string& path) {
    struct stat entry;
    if (stat(path.c_str(), &entry) != 0) return type_key(path, 0);
    if (S_ISDIR(entry.st_mode)) return folder_key(path);
    const char* inode = inode_type(entry.st_mode);
    return inode ? inode : file_key(path, entry);
}

std::vector<std::string> icon_names(const std::string& key) {
    if (key[0] == entry_mark) return {key.substr(1), "application-x-executable"};
    if (key[0] == place_mark) return {key.substr(1), "folder", "inode-directory"};
    std::vector<std::string> names;
    GIcon* icon = g_content_type_get_icon(key.c_str());
    if (G_IS_THEMED_ICON(icon)) {
        const char* const* i = g_themed_icon_get_names(G_THEMED_ICON(icon));
        for (; i && *i; i++) append(names, *i);
    }
    if (icon) g_object_unref(icon);
    names.push_back("text-x-generic");
    return names;
}
