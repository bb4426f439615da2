#include "carbon/installed_applications.h"

#include <dirent.h>
#include <gio/gdesktopappinfo.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <unordered_set>

#include "carbon/glib_owners.h"
#include "carbon/moments.h"
#include "carbon/small_files.h"

namespace files {

namespace {

const size_t largest_entry = 256 * 1024;
const int deepest_folder = 4;

const char* const runners[] = {"bash",
                               "dash",
                               "dbus-launch",
                               "electron",
                               "flatpak",
                               "gapplication",
                               "gjs",
                               "java",
                               "mono",
                               "node",
                               "nohup",
                               "perl",
                               "pkexec",
                               "python",
                               "python2",
                               "python3",
                               "ruby",
                               "sh",
                               "snap",
                               "sudo",
                               "systemd-run",
                               "wine",
                               "x-terminal-emulator",
                               "xdg-open",
                               "xterm"};

bool is_runner(const std::string& program) {
    return std::any_of(std::begin(runners), std::end(runners),
                       [&](const char* runner) { return program == runner; });
}

// A folder that was looked into, and when it had last changed then.
struct Folder {
    std::string path;
    struct timespec changed;
    bool exists;
};

Folder look_at(const std::string& path) {
    struct stat status = {};
    const bool exists = stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    return {path, status.st_mtim, exists};
}

bool is_unchanged(const Folder& folder) {
    const Folder now = look_at(folder.path);
    return now.exists == folder.exists && now.changed.tv_sec == folder.changed.tv_sec &&
           now.changed.tv_nsec == folder.changed.tv_nsec;
}

struct Index {
    std::string language;
    std::vector<std::string> roots;
    std::vector<Folder> folders;
    std::vector<InstalledApplication> applications;
    std::unordered_set<std::string> ids;
};

void add_entry(const std::string& path, const std::string& id, Index* index) {
    if (!index->ids.insert(id).second) return;
    InstalledApplication application;
    if (!read_application(path, &application)) return;
    application.id = id;
    index->applications.push_back(std::move(application));
}

void add_folder(const std::string& path, const std::string& prefix, int depth, Index* index) {
    index->folders.push_back(look_at(path));
    DIR* folder = opendir(path.c_str());
    if (!folder) return;
    std::vector<std::string> inner;
    while (const dirent* entry = readdir(folder)) {
        const std::string name = entry->d_name;
        if (name[0] == '.') continue;
        if (name.ends_with(".desktop")) {
            add_entry(path + "/" + name, prefix + name.substr(0, name.size() - 8), index);
        } else if (entry->d_type == DT_DIR && depth < deepest_folder) {
            inner.push_back(name);
        }
    }
    closedir(folder);
    for (const std::string& name : inner) {
        add_folder(path + "/" + name, prefix + name + "-", depth + 1, index);
    }
}

std::vector<std::string> data_folders() {
    std::vector<std::string> folders = {g_get_user_data_dir()};
    for (auto folder = g_get_system_data_dirs(); *folder; folder++) folders.push_back(*folder);
    return folders;
}

bool is_current(const Index& index, const std::vector<std::string>& roots) {
    return index.roots == roots && index.language == g_get_language_names()[0] &&
           std::all_of(index.folders.begin(), index.folders.end(), is_unchanged);
}

Index read_index(const std::vector<std::string>& roots) {
    Index index;
    index.language = g_get_language_names()[0];
    index.roots = roots;
    for (const std::string& root : roots) add_folder(root + "/applications", "", 0, &index);
    return index;
}

std::string text_of(GKeyFile* keys, const char* key, bool localized = false) {
    const char* group = G_KEY_FILE_DESKTOP_GROUP;
    const TextOwner text(localized
                             ? g_key_file_get_locale_string(keys, group, key, nullptr, nullptr)
                             : g_key_file_get_string(keys, group, key, nullptr));
    return text ? text.get() : "";
}

bool flag_of(GKeyFile* keys, const char* key) {
    return g_key_file_get_boolean(keys, G_KEY_FILE_DESKTOP_GROUP, key, nullptr);
}

std::string base_name(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

std::string program_of_command(const char* command) {
    char** words = nullptr;
    if (!g_shell_parse_argv(command, nullptr, &words, nullptr)) return {};
    std::string program;
    for (char** word = words; *word; word++) {
        program = base_name(*word);
        if (program != "env" && !strchr(*word, '=')) break;
        program.clear();
    }
    g_strfreev(words);
    return is_runner(program) ? std::string() : program;
}

bool read_application(const std::string& path, InstalledApplication* application) {
    std::string content;
    if (!read_small_file(path.c_str(), largest_entry, &content)) return false;
    const KeyFileOwner keys(g_key_file_new());
    if (!g_key_file_load_from_data(keys.get(), content.data(), content.size(), G_KEY_FILE_NONE,
                                   nullptr) ||
        text_of(keys.get(), G_KEY_FILE_DESKTOP_KEY_TYPE) != G_KEY_FILE_DESKTOP_TYPE_APPLICATION) {
        return false;
    }
    const std::string name = base_name(path);
    application->id = name.substr(0, name.rfind('.'));
    application->path = path;
    application->name = text_of(keys.get(), G_KEY_FILE_DESKTOP_KEY_NAME, true);
    application->plain_name = text_of(keys.get(), G_KEY_FILE_DESKTOP_KEY_NAME);
    application->window_class = text_of(keys.get(), G_KEY_FILE_DESKTOP_KEY_STARTUP_WM_CLASS);
    application->program =
        program_of_command(text_of(keys.get(), G_KEY_FILE_DESKTOP_KEY_EXEC).c_str());
    application->is_shown = !flag_of(keys.get(), G_KEY_FILE_DESKTOP_KEY_NO_DISPLAY) &&
                            !flag_of(keys.get(), G_KEY_FILE_DESKTOP_KEY_HIDDEN);
    return true;
}

const std::vector<InstalledApplication>& installed_applications() {
    static Index& index = *new Index;
    static int64_t looked_at = -one_moment;
    const int64_t now = milliseconds_now();
    if (now - looked_at < one_moment) return index.applications;
    looked_at = now;
    const std::vector<std::string> roots = data_folders();
    if (!is_current(index, roots)) index = read_index(roots);
    return index.applications;
}

const InstalledApplication* application_with_id(const std::string& id) {
    const std::vector<InstalledApplication>& all = installed_applications();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto& one) { return one.id == id; });
    return found == all.end() ? nullptr : &*found;
}

bool same_text(const std::string& one, const std::string& other) {
    if (one == other) return true;
    if (!g_utf8_validate(one.data(), static_cast<gssize>(one.size()), nullptr) ||
        !g_utf8_validate(other.data(), static_cast<gssize>(other.size()), nullptr)) {
        return false;
    }
    const TextOwner first(g_utf8_casefold(one.c_str(), -1));
    const TextOwner second(g_utf8_casefold(other.c_str(), -1));
    return strcmp(first.get(), second.get()) == 0;
}

}  // namespace files
