#include "desktop/recent_documents.h"

#include <host/glib_owners.h>
#include <glib.h>
#include <sys/stat.h>

#include <algorithm>
#include <unordered_set>

#include "desktop/installed_applications.h"
#include "desktop/small_files.h"

namespace files {

namespace {

const size_t largest_list = 8 << 20;

using BookmarksOwner = std::unique_ptr<GBookmarkFile, Release<g_bookmark_file_free>>;

// One application's use of one document.
struct Use {
    std::string address;
    std::string name;     // the name that the application registered with
    std::string program;  // the program of its command
    int64_t used_at;      // microseconds
};

struct Stamp {
    dev_t device;
    ino_t inode;
    off_t size;
    struct timespec changed;

    bool operator==(const Stamp& other) const {
        return device == other.device && inode == other.inode && size == other.size &&
               changed.tv_sec == other.changed.tv_sec && changed.tv_nsec == other.changed.tv_nsec;
    }
};

Stamp stamp_of(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return {};
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim};
}

void add_use(GBookmarkFile* bookmarks, const char* address, const char* name,
             std::vector<Use>* uses) {
    char* command = nullptr;
    GDateTime* when = nullptr;
    if (!g_bookmark_file_get_application_info(bookmarks, address, name, &command, nullptr, &when,
                                              nullptr)) {
        return;
    }
    const TextOwner owner(command);
    const int64_t used_at =
        when ? g_date_time_to_unix(when) * G_USEC_PER_SEC + g_date_time_get_microsecond(when) : 0;
    uses->push_back({address, name, command ? program_of_command(command) : "", used_at});
}

std::vector<Use> uses_in(GBookmarkFile* bookmarks) {
    std::vector<Use> uses;
    const TextsOwner addresses(g_bookmark_file_get_uris(bookmarks, nullptr));
    for (char** address = addresses.get(); *address; address++) {
        if (!g_str_has_prefix(*address, "file:")) continue;
        const TextsOwner names(
            g_bookmark_file_get_applications(bookmarks, *address, nullptr, nullptr));
        for (char** name = names.get(); name && *name; name++) {
            add_use(bookmarks, *address, *name, &uses);
        }
    }
    std::stable_sort(uses.begin(), uses.end(),
                     [](const Use& one, const Use& other) { return one.used_at > other.used_at; });
    return uses;
}

std::vector<Use> read_list(const std::string& path) {
    std::string content;
    if (!read_small_file(path.c_str(), largest_list, &content) || content.empty()) return {};
    const BookmarksOwner bookmarks(g_bookmark_file_new());
    if (!g_bookmark_file_load_from_data(bookmarks.get(), content.data(), content.size(), nullptr)) {
        return {};
    }
    return uses_in(bookmarks.get());
}

// All uses, newest first.
const std::vector<Use>& all_uses() {
    static std::vector<Use>& uses = *new std::vector<Use>;
    static Stamp read_at = {};
    const std::string path = std::string(g_get_user_data_dir()) + "/recently-used.xbel";
    const Stamp now = stamp_of(path);
    if (now == read_at) return uses;
    uses = now == Stamp{} ? std::vector<Use>() : read_list(path);
    read_at = now;
    return uses;
}

// Example: "gedit" for "org.gnome.gedit".
std::string short_id(const std::string& id) { return id.substr(id.rfind('.') + 1); }

bool is_name_of(const std::string& name, const InstalledApplication& application) {
    return same_text(name, application.name) || same_text(name, application.plain_name) ||
           same_text(name, application.id) || same_text(name, short_id(application.id));
}

bool is_used_by(const Use& use, const InstalledApplication& application) {
    if (!use.program.empty() && use.program == application.program) return true;
    return !use.name.empty() && is_name_of(use.name, application);
}

}  // namespace

std::vector<std::string> recent_documents(const std::string& identifier, size_t most) {
    const std::vector<Use>& uses = all_uses();
    if (identifier.empty() || uses.empty()) return {};
    const InstalledApplication* installed = application_with_id(identifier);
    InstalledApplication unknown = {};
    unknown.id = identifier;
    const InstalledApplication& application = installed ? *installed : unknown;

    std::vector<std::string> documents;
    std::unordered_set<std::string> seen;
    for (const Use& use : uses) {
        if (documents.size() == most) break;
        if (!is_used_by(use, application) || !seen.insert(use.address).second) continue;
        documents.push_back(use.address);
    }
    return documents;
}

}  // namespace files
