// Whether the disk of a path answers, asked before a call that would wait for it for ever. A disk
// that has just answered, or has just not, is not asked again for a moment. Any thread may ask.
#pragma once

#include <stddef.h>

#include <string>

namespace files {

// Asked about the entry itself: a link is not followed. Costs nothing for most entries of a folder
// that is asked about entry by entry.
bool is_silent_entry(const char* path, size_t length);
inline bool is_silent_entry(const std::string& path) {
    return is_silent_entry(path.data(), path.size());
}

// Asked about what links lead to.
bool is_silent_target(const std::string& path);

// Asked for a whole listing.
bool is_silent_folder(const std::string& path);

// Whether another disk, of which that may be asked, begins at an entry of this folder.
bool has_disks_within(const std::string& folder);

}  // namespace files
