#include "desktop/installed_applications.h"

#include <host/glib_owners.h>
#include <host/process.h>

#include <dirent.h>
#include <glib.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <set>
#include <unordered_set>

#include "desktop/entry_file.h"
#include "desktop/moments.h"

namespace files {

namespace {

const int deepest_folder = 4;

const char* const runners[] = {"bash",     "dash",         "dbus-launch", "electron",
                               "flatpak",  "gapplication", "gjs",         "java",
                               "mono",     "node",         "nohup",       "perl",
                               "pkexec",   "ruby",         "sh",          "snap",
                               "sudo",     "systemd-run",  "wine",        "x-terminal-emulator",
                               "xdg-open", "xterm"};

// A folder that was read, and when it had last changed at that time.
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

using Identity = std::pair<dev_t, ino_t>;

struct Index {
    std::string language;
    std::vector<std::string> roots;
    std::vector<Folder> folders;
    std::vector<InstalledApplication> applications;
    std::unordered_set<std::string> ids;
    std::set<Identity> seen;   // the folders
    std::set<Identity> files;  // of all entries, also of those that another one stands for
};

void add_entry(const std::string& path, const std::string& id, Index* index) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return;
    index->files.emplace(status.st_dev, status.st_ino);
    if (!index->ids.insert(id).second) return;
    InstalledApplication application;
    if (!read_application(path, &application)) return;
    application.id = id;
    index->applications.push_back(std::move(application));
}

bool is_folder(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// Adds each folder once, since links may lead in a circle.
void add_folder(const std::string& path, const std::string& prefix, int depth, Index* index) {
    struct stat status;
    if (stat(path.c_str(), &status) == 0 &&
        !index->seen.insert({status.st_dev, status.st_ino}).second) {
        return;
    }
    index->folders.push_back(look_at(path));
    DIR* folder = opendir(path.c_str());
    if (!folder) return;
    std::vector<std::string> inner;
    while (const dirent* entry = readdir(folder)) {
        const std::string name = entry->d_name;
        if (name[0] == '.') continue;
        if (name.ends_with(".desktop")) {
            add_entry(path + "/" + name, prefix + name.substr(0, name.size() - 8), index);
        } else if (depth < deepest_folder && is_folder(path + "/" + name)) {
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

std::string base_name(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// Looks at the folders again when `age` milliseconds have passed.
const Index& current_index(int64_t age) {
    static Index& index = *new Index;
    static int64_t looked_at = -one_moment;
    const int64_t now = milliseconds_now();
    if (now - looked_at < age) return index;
    looked_at = now;
    const std::vector<std::string> roots = data_folders();
    if (!is_current(index, roots)) index = read_index(roots);
    return index;
}

// With a slash at its end; empty when there is none.
std::string& declared_folder() {
    static std::string& folder = *new std::string;
    return folder;
}

std::unordered_set<std::string>& running_paths() {
    static auto& paths = *new std::unordered_set<std::string>;
    return paths;
}

bool is_ascii(const std::string& text) {
    return std::ranges::all_of(text, [](char unit) { return unit > 0; });
}

}  // namespace

std::string program_of_command(const char* command) {
    char** parsed = nullptr;
    if (!g_shell_parse_argv(command, nullptr, &parsed, nullptr)) return {};
    const TextsOwner words(parsed);
    std::string program;
    for (char** word = words.get(); *word; word++) {
        program = base_name(*word);
        if (program != "env" && !strchr(*word, '=')) break;
        program.clear();
    }
    return runs_many_applications(program) ? std::string() : program;
}

bool runs_many_applications(const std::string& program) {
    const std::string python = "python";  // with a number: python3.11
    if (program.starts_with(python) &&
        program.find_first_not_of("0123456789.", python.size()) == program.npos) {
        return true;
    }
    return std::any_of(std::begin(runners), std::end(runners),
                       [&](const char* runner) { return program == runner; });
}

bool read_application(const std::string& path, InstalledApplication* application) {
    const EntryFile* entry = read_entry_file(path);
    if (!entry) return false;
    const std::string name = base_name(path);
    application->id = name.substr(0, name.rfind('.'));
    application->path = path;
    application->name = entry->name;
    application->plain_name = entry->plain_name;
    application->window_class = entry->window_class;
    application->program = program_of_command(entry->command.c_str());
    application->is_shown = entry->is_displayed && !entry->is_hidden;
    return true;
}

const std::vector<InstalledApplication>& installed_applications() {
    return current_index(one_moment).applications;
}

bool is_installed_entry(const std::string& path, const struct stat& status) {
    const Identity file = {status.st_dev, status.st_ino};
    // Looks at the folders now: an entry may be new, or may be gone and its inode number given to
    // another file.
    if (current_index(0).files.contains(file)) return true;
    const TextOwner real(declared_folder().empty() ? nullptr : realpath(path.c_str(), nullptr));
    return real && is_in_declared_folder(real.get());
}

bool is_in_declared_folder(const std::string& path) {
    return !declared_folder().empty() && path.starts_with(declared_folder());
}

void note_running_applications(const std::vector<std::string>& paths) {
    running_paths() = {paths.begin(), paths.end()};
}

bool knows_running_applications() { return !running_paths().empty(); }

bool is_running_application(const std::string& path) {
    return knows_running_applications() && running_paths().contains(path);
}

const InstalledApplication* application_with_id(const std::string& id) {
    const std::vector<InstalledApplication>& all = installed_applications();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto& one) { return one.id == id; });
    return found == all.end() ? nullptr : &*found;
}

// Nearly all names are ASCII, and folding texts of other letters takes a hundred times as long.
bool same_text(const std::string& one, const std::string& other) {
    if (one == other) return true;
    if (is_ascii(one) && is_ascii(other)) {
        return std::ranges::equal(one, other, {}, g_ascii_tolower, g_ascii_tolower);
    }
    if (!g_utf8_validate(one.data(), static_cast<gssize>(one.size()), nullptr) ||
        !g_utf8_validate(other.data(), static_cast<gssize>(other.size()), nullptr)) {
        return false;
    }
    const TextOwner first(g_utf8_casefold(one.c_str(), -1));
    const TextOwner second(g_utf8_casefold(other.c_str(), -1));
    return strcmp(first.get(), second.get()) == 0;
}

}  // namespace files

void declare_applications_folder(const char* path) {
    std::string& folder = files::declared_folder();
    folder.clear();
    const files::TextOwner real(path ? realpath(path, nullptr) : nullptr);
    const files::TextOwner home(realpath(g_get_home_dir(), nullptr));
    if (!real || !strcmp(real.get(), "/")) return;
    if (!home || strcmp(real.get(), home.get()) != 0) folder = std::string(real.get()) + "/";
}
