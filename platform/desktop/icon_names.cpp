#include "desktop/icon_names.h"

#include <host/glib_owners.h>
#include <gio/gio.h>
#include <sys/stat.h>

#include "corefoundation/silent_disks.h"
#include "desktop/desktop_entries.h"

namespace {

// A key is a content type, or one of these marks followed by the name or path of an icon.
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

std::string type_key(const std::string& path, mode_t mode) {
    gboolean uncertain = FALSE;
    const files::TextOwner type(g_content_type_guess(path.c_str(), nullptr, 0, &uncertain));
    const std::string key = type ? type.get() : "application/octet-stream";
    if (!uncertain || key != "application/octet-stream") return key;
    return mode & S_IXUSR ? "application/x-executable" : "text/plain";
}

std::string entry_key(const files::DesktopEntry& entry) {
    switch (entry.standing) {
        case files::Standing::document:
            return "text/plain";
        case files::Standing::program:
            return "application/x-executable";
        case files::Standing::application:
            break;
    }
    return entry.icon.empty() ? "application/x-executable" : entry_mark + entry.icon;
}

std::string file_key(const std::string& path, const struct stat& entry) {
    if (path.ends_with(".desktop")) return entry_key(files::desktop_entry_at(path));
    return type_key(path, entry.st_mode);
}

void append(std::vector<std::string>& names, const char* name) {
    if (!g_str_has_suffix(name, "-symbolic")) names.push_back(name);
}

}  // namespace

std::string icon_key(const std::string& path) {
    struct stat entry;
    if (files::is_silent_target(path)) return folder_key(path);
    if (stat(path.c_str(), &entry) != 0) return type_key(path, 0);
    if (S_ISDIR(entry.st_mode)) return folder_key(path);
    const char* inode = inode_type(entry.st_mode);
    return inode ? inode : file_key(path, entry);
}

std::vector<std::string> icon_names(const std::string& key) {
    if (key[0] == entry_mark) return {key.substr(1), "application-x-executable"};
    if (key[0] == place_mark) return {key.substr(1), "folder", "inode-directory"};
    std::vector<std::string> names;
    const files::ObjectOwner<GIcon> icon(g_content_type_get_icon(key.c_str()));
    if (G_IS_THEMED_ICON(icon.get())) {
        const char* const* i = g_themed_icon_get_names(G_THEMED_ICON(icon.get()));
        for (; i && *i; i++) append(names, *i);
    }
    names.push_back("text-x-generic");
    return names;
}
