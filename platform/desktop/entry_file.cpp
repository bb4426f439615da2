#include "desktop/entry_file.h"

#include <host/glib_owners.h>
#include <host/offered_entries.h>
#include <gio/gdesktopappinfo.h>
#include <sys/stat.h>
#include <time.h>

#include <optional>
#include <unordered_map>

#include "desktop/small_files.h"

namespace files {

namespace {

const size_t largest_entry = 256 * 1024, most_kept = 1024;

std::string text_of(GKeyFile* keys, const char* key) {
    return taken_text(g_key_file_get_string(keys, G_KEY_FILE_DESKTOP_GROUP, key, nullptr));
}

// The text of a key, in the user's language.
std::string own_text_of(GKeyFile* keys, const char* key) {
    return taken_text(
        g_key_file_get_locale_string(keys, G_KEY_FILE_DESKTOP_GROUP, key, nullptr, nullptr));
}

bool flag_of(GKeyFile* keys, const char* key) {
    return g_key_file_get_boolean(keys, G_KEY_FILE_DESKTOP_GROUP, key, nullptr);
}

// The name of an icon has no ending, but entries often give one.
std::string without_ending(std::string icon) {
    if (icon.starts_with('/')) return icon;
    for (const char* ending : {".png", ".svg", ".xpm"}) {
        if (icon.ends_with(ending)) return icon.substr(0, icon.size() - 4);
    }
    return icon;
}

// Null when the file is no entry of an application.
KeyFileOwner read_keys(const std::string& path) {
    std::string content;
    if (!read_small_file(path.c_str(), largest_entry, &content)) return nullptr;
    KeyFileOwner keys(g_key_file_new());
    if (!g_key_file_load_from_data(keys.get(), content.data(), content.size(), G_KEY_FILE_NONE,
                                   nullptr) ||
        text_of(keys.get(), G_KEY_FILE_DESKTOP_KEY_TYPE) != G_KEY_FILE_DESKTOP_TYPE_APPLICATION) {
        return nullptr;
    }
    return keys;
}

std::optional<EntryFile> entry_of(GKeyFile* keys) {
    if (!keys) return std::nullopt;
    return EntryFile{own_text_of(keys, G_KEY_FILE_DESKTOP_KEY_NAME),
                     text_of(keys, G_KEY_FILE_DESKTOP_KEY_NAME),
                     without_ending(text_of(keys, G_KEY_FILE_DESKTOP_KEY_ICON)),
                     text_of(keys, G_KEY_FILE_DESKTOP_KEY_EXEC),
                     text_of(keys, G_KEY_FILE_DESKTOP_KEY_STARTUP_WM_CLASS),
                     flag_of(keys, G_KEY_FILE_DESKTOP_KEY_HIDDEN),
                     !flag_of(keys, G_KEY_FILE_DESKTOP_KEY_NO_DISPLAY)};
}

// Which state of which file was read.
struct State {
    dev_t device;
    ino_t file;
    off_t size;
    struct timespec written, changed;
};

bool are_equal(const struct timespec& one, const struct timespec& other) {
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

bool are_equal(const State& one, const State& other) {
    return one.device == other.device && one.file == other.file && one.size == other.size &&
           are_equal(one.written, other.written) && are_equal(one.changed, other.changed);
}

// A second change within one tick of the file system's clock would not be seen.
bool is_settled(const State& state) {
    struct timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    return state.changed.tv_sec + 1 < now.tv_sec;
}

struct Kept {
    State state;
    bool was_settled;  // before it was read
    std::optional<EntryFile> entry;
};

// The entries of the present language.
std::unordered_map<std::string, Kept>& kept_entries() {
    static auto& entries = *new std::unordered_map<std::string, Kept>;
    static std::string& language = *new std::string;
    const std::string now = g_get_language_names()[0];
    if (language != now || entries.size() >= most_kept) entries.clear();
    language = now;
    return entries;
}

}  // namespace

const EntryFile* read_entry_file(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
    const State state = {status.st_dev, status.st_ino, status.st_size, status.st_mtim,
                         status.st_ctim};
    auto& entries = kept_entries();
    const auto found = entries.find(path);
    const bool known = found != entries.end() && are_equal(found->second.state, state);
    Kept& kept = known ? found->second : entries[path];
    if (!known || !kept.was_settled) {
        const bool settled = is_settled(state);
        kept = {state, settled, entry_of(read_keys(path).get())};
    }
    return kept.entry ? &*kept.entry : nullptr;
}

}  // namespace files

// GIO knows the rules of the desktops and looks for the programs.
bool is_offered_entry(const std::string& path, std::string* name) {
    const files::KeyFileOwner keys = files::read_keys(path);
    const files::ObjectOwner<GDesktopAppInfo> entry(
        keys ? g_desktop_app_info_new_from_keyfile(keys.get()) : nullptr);
    if (!entry || g_desktop_app_info_get_is_hidden(entry.get())) return false;
    GAppInfo* program = G_APP_INFO(entry.get());
    *name = g_app_info_get_name(program);
    return g_app_info_should_show(program) &&
           (g_app_info_supports_files(program) || g_app_info_supports_uris(program));
}
