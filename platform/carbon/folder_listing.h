// What the last scandir saw, kept for the questions about its entries that follow at once.
//
// The listing tells the kind and Finder information of each entry one time, in the order in which
// scandir gave the names. It does so only while the folder is seen to be unchanged: a folder's
// change time moves whenever a name in it appears, disappears or is given to another file. Nothing
// is kept open. Main thread.
#pragma once

#include <dirent.h>
#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

#include "carbon/attributes_ahead.h"

namespace files {

// Which folder stands at a path, and when it changed.
struct FolderState {
    uint64_t inode;
    uint32_t device_major, device_minor;
    int64_t changed_seconds;
    uint32_t changed_nanoseconds;

    bool operator==(const FolderState&) const = default;
};

class FolderListing {
  public:
    // Make this before the folder is read.
    explicit FolderListing(const char* path);

    // Whether the listing can be kept: the path is absolute, has a slash at its end, and changes to
    // the folder from now on will show.
    bool is_wanted() const { return !folder_.empty(); }

    // Call this after the folder was read; before[i] is where entries[i] stands among the
    // attributes. Waits for the attributes.
    void keep(const dirent* const* entries, const std::vector<uint32_t>& before,
              AttributesAhead* attributes);

  private:
    std::string folder_;
    FolderState state_ = {};
};

// What the last listing says about an entry.
struct ListedEntry {
    unsigned char type;  // DT_REG, DT_DIR, DT_LNK
    uint32_t device_major, device_minor;
    Attributes::State attribute;
    FinderInformation information;  // where the attribute is known
};

// Takes the next entry of the last listing, if this is its path.
bool take_listed_entry(const char* path, size_t length, int64_t now, ListedEntry* entry);

}  // namespace files
