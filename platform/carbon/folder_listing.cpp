#include "carbon/folder_listing.h"

#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>

#include <utility>

#include "desktop/moments.h"

namespace files {

namespace {

// The longest time between two questions, in milliseconds. A scan on a busy machine may have to
// wait for its turn.
const int64_t longest_pause = 10 * one_moment;

// So many entries ahead are fetched from memory.
const size_t fetched_ahead = 8;

struct Entry {
    uint32_t name;   // in Kept::names
    uint32_t index;  // in Kept::attributes
    unsigned char type;
};

struct Kept {
    std::string folder;  // with its slash; empty when nothing is kept
    FolderState state;
    int64_t seen_at;    // when the folder was last seen to be unchanged
    std::string names;  // each with a 0 at its end
    std::vector<Entry> entries;
    Attributes attributes;
    size_t next;         // in `entries`
    bool hidden_wanted;  // a name that begins with a dot was asked for

    const char* name_of(const Entry& entry) const { return names.data() + entry.name; }
};

Kept& kept() {
    static Kept& kept = *new Kept;
    return kept;
}

bool see(const char* folder, FolderState* state) {
    struct statx status;
    if (statx(AT_FDCWD, folder, AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC, STATX_INO | STATX_CTIME,
              &status) != 0) {
        return false;
    }
    *state = {status.stx_ino, status.stx_dev_major, status.stx_dev_minor, status.stx_ctime.tv_sec,
              status.stx_ctime.tv_nsec};
    return true;
}

// Whether a change from now on shows. Change times are as coarse as this clock, so a change within
// its present tick might not show.
bool changes_show(const FolderState& state) {
    timespec now;
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return std::pair(state.changed_seconds, int64_t{state.changed_nanoseconds}) <
           std::pair(int64_t{now.tv_sec}, int64_t{now.tv_nsec});
}

void forget(Kept* all) { *all = {}; }

bool is_as_it_was(Kept* all, int64_t now) {
    if (now == all->seen_at) return true;
    FolderState state;
    if (now - all->seen_at >= longest_pause || !see(all->folder.c_str(), &state) ||
        state != all->state) {
        return false;
    }
    all->seen_at = now;
    return true;
}

bool is_in_folder(const Kept& all, const char* path, size_t length) {
    const size_t folder = all.folder.size();
    return folder != 0 && length > folder && memcmp(path, all.folder.data(), folder) == 0 &&
           !memchr(path + folder, '/', length - folder);
}

bool is_dot_or_dots(const char* name) {
    return name[0] == '.' && (!name[1] || (name[1] == '.' && !name[2]));
}

// The index of the next entry that may be asked for. Hidden entries are passed over until one is
// asked for.
size_t next_wanted(const Kept& all) {
    size_t next = all.next;
    while (!all.hidden_wanted && next != all.entries.size() &&
           *all.name_of(all.entries[next]) == '.') {
        next++;
    }
    return next;
}

void tell(const Kept& all, const Entry& listed, ListedEntry* entry) {
    entry->type = listed.type;
    entry->device_major = all.state.device_major;
    entry->device_minor = all.state.device_minor;
    entry->attribute = all.attributes.state(listed.index);
    if (entry->attribute == Attributes::SOME) {
        entry->information = all.attributes.information(listed.index);
    } else {
        entry->information = {};
    }
}

}  // namespace

FolderListing::FolderListing(const char* path) {
    forget(&kept());
    const size_t length = strlen(path);
    if (path[0] != '/' || path[length - 1] != '/') return;
    if (see(path, &state_) && changes_show(state_)) folder_.assign(path, length);
}

void FolderListing::keep(const dirent* const* entries, const std::vector<uint32_t>& before,
                         AttributesAhead* attributes) {
    FolderState state;
    if (folder_.empty() || !see(folder_.c_str(), &state) || state != state_) return;
    Kept& all = kept();
    all.folder = std::move(folder_);
    all.state = state;
    all.seen_at = milliseconds_now();
    all.entries.reserve(before.size());
    for (size_t i = 0; i < before.size(); i++) {
        // The entries lie in memory in the folder's order, not in this one.
        if (i + fetched_ahead < before.size()) __builtin_prefetch(entries[i + fetched_ahead]);
        const char* name = entries[i]->d_name;
        if (is_dot_or_dots(name)) continue;
        all.entries.push_back(
            {static_cast<uint32_t>(all.names.size()), before[i], entries[i]->d_type});
        all.names.append(name, strlen(name) + 1);
    }
    all.attributes = attributes->finish();
}

bool take_listed_entry(const char* path, size_t length, int64_t now, ListedEntry* entry) {
    Kept& all = kept();
    if (!is_in_folder(all, path, length)) return false;
    const char* const name = path + all.folder.size();
    if (name[0] == '.') all.hidden_wanted = true;
    const size_t next = next_wanted(all);
    if (next == all.entries.size() || !is_as_it_was(&all, now)) return forget(&all), false;
    const Entry& listed = all.entries[next];
    if (strcmp(all.name_of(listed), name) != 0) return false;
    tell(all, listed, entry);
    all.next = next + 1;
    return listed.type == DT_REG || listed.type == DT_DIR || listed.type == DT_LNK;
}

}  // namespace files
