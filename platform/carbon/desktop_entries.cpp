#include "carbon/desktop_entries.h"

#include "carbon/file_references.h"
#include "carbon/glib_owners.h"
#include "carbon/small_files.h"

namespace files {

namespace {

const size_t largest_entry = 256 * 1024;

DesktopEntry parse(const std::string& content) {
    DesktopEntry entry = {};
    const KeyFileOwner keys(g_key_file_new());
    if (!g_key_file_load_from_data(keys.get(), content.data(), content.size(), G_KEY_FILE_NONE,
                                   nullptr)) {
        return entry;
    }
    const char* group = G_KEY_FILE_DESKTOP_GROUP;
    const TextOwner type(
        g_key_file_get_string(keys.get(), group, G_KEY_FILE_DESKTOP_KEY_TYPE, nullptr));
    entry.is_application = g_strcmp0(type.get(), G_KEY_FILE_DESKTOP_TYPE_APPLICATION) == 0;
    const TextOwner name(g_key_file_get_locale_string(
        keys.get(), group, G_KEY_FILE_DESKTOP_KEY_NAME, nullptr, nullptr));
    if (name) entry.name = name.get();
    return entry;
}

}  // namespace

const DesktopEntry& desktop_entry(const File& file) {
    static DesktopEntry& entry = *new DesktopEntry;
    static uint64_t generation = 0;
    static int64_t seen_at = 0;
    if (file.generation == generation && file.seen_at == seen_at) return entry;

    std::string content;
    entry = {};
    if (read_small_file(file.path.c_str(), largest_entry, &content)) entry = parse(content);
    generation = file.generation;
    seen_at = file.seen_at;
    return entry;
}

bool is_application_entry(const std::string& path) {
    std::string content;
    return read_small_file(path.c_str(), largest_entry, &content) && parse(content).is_application;
}

}  // namespace files
