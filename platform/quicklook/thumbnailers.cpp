#include "quicklook/thumbnailers.h"

#include <host/glib_owners.h>
#include <dirent.h>
#include <glib.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <optional>
#include <set>

#include "quicklook/plain_file.h"

namespace thumbnails {

namespace {

using Command = std::vector<std::string>;

struct Registry {
    std::map<std::string, int64_t> folders;   // and when each changed, in nanoseconds
    std::map<std::string, Command> commands;  // by content type
};

const size_t largest_entry = 256 * 1024;

int64_t changed_at(const std::string& folder) {
    struct stat status;
    if (stat(folder.c_str(), &status) != 0) return 0;
    return status.st_mtim.tv_sec * int64_t{1000000000} + status.st_mtim.tv_nsec;
}

// The user's own folder comes first.
std::vector<std::string> folders() {
    std::vector<std::string> folders = {std::string(g_get_user_data_dir()) + "/thumbnailers"};
    for (const char* const* folder = g_get_system_data_dirs(); *folder; folder++) {
        folders.push_back(std::string(*folder) + "/thumbnailers");
    }
    return folders;
}

std::string text_of(GKeyFile* keys, const char* key) {
    return files::taken_text(g_key_file_get_string(keys, "Thumbnailer Entry", key, nullptr));
}

// Empty when there is no such program.
std::string program_path(const std::string& name) {
    return name.empty() ? name : files::taken_text(g_find_program_in_path(name.c_str()));
}

Command command_of(GKeyFile* keys) {
    const std::string needed = text_of(keys, "TryExec");
    if (!needed.empty() && program_path(needed).empty()) return {};
    gchar** parsed = nullptr;
    if (!g_shell_parse_argv(text_of(keys, "Exec").c_str(), nullptr, &parsed, nullptr)) return {};
    const files::TextsOwner words(parsed);
    Command command;
    for (gchar** word = words.get(); *word; word++) command.push_back(*word);
    command.front() = program_path(command.front());
    return command.front().empty() ? Command{} : command;
}

void add_entry(Registry& registry, const std::string& path) {
    const std::optional<std::string> content = read_plain_file(path, largest_entry);
    if (!content) return;
    const files::KeyFileOwner keys(g_key_file_new());
    if (!g_key_file_load_from_data(keys.get(), content->data(), content->size(), G_KEY_FILE_NONE,
                                   nullptr)) {
        return;
    }
    const Command command = command_of(keys.get());
    const files::TextsOwner types(
        g_key_file_get_string_list(keys.get(), "Thumbnailer Entry", "MimeType", nullptr, nullptr));
    for (gchar** type = command.empty() ? nullptr : types.get(); type && *type; type++) {
        registry.commands.emplace(*type, command);  // the first one stays
    }
}

// Files are known by name: a file in the user's folder hides the system's file of the same name.
void add_folder(Registry& registry, const std::string& folder, std::set<std::string>& seen) {
    DIR* entries = opendir(folder.c_str());
    if (!entries) return;
    std::vector<std::string> names;
    while (const dirent* entry = readdir(entries)) {
        const size_t length = strlen(entry->d_name);
        const char ending[] = ".thumbnailer";
        const size_t ending_length = sizeof ending - 1;
        if (length <= ending_length) continue;
        if (strcmp(entry->d_name + length - ending_length, ending) == 0) {
            names.push_back(entry->d_name);
        }
    }
    closedir(entries);
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        if (seen.insert(name).second) add_entry(registry, folder + "/" + name);
    }
}

std::mutex lock;

// With the lock held.
const Registry& current_registry() {
    static Registry& registry = *new Registry;
    std::map<std::string, int64_t> now;
    for (const std::string& folder : folders()) now[folder] = changed_at(folder);
    if (now == registry.folders) return registry;
    registry = {now, {}};
    std::set<std::string> seen;
    for (const std::string& folder : folders()) add_folder(registry, folder, seen);
    return registry;
}

}  // namespace

std::vector<std::string> thumbnailer_for(const std::string& type) {
    const std::lock_guard guard(lock);
    const Registry& registry = current_registry();
    const auto found = registry.commands.find(type);
    return found == registry.commands.end() ? Command{} : found->second;
}

int64_t thumbnailers_changed_at() {
    int64_t latest = 0;
    for (const std::string& folder : folders()) latest = std::max(latest, changed_at(folder));
    return latest / 1000000000;
}

}  // namespace thumbnails
