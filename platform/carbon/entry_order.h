// The order of a folder's entries.
#pragma once

#include <dirent.h>
#include <stddef.h>
#include <stdint.h>

#include <vector>

namespace files {

using EntryComparison = int (*)(const dirent**, const dirent**);

// Sorts as a stable sort with `compare` does, and returns where each entry stood before. When
// `compare` orders names as UCCompareTextDefault does, it is called only once for each entry.
std::vector<uint32_t> sort_entries(dirent** entries, size_t count, EntryComparison compare);

// The same, in the order of the user's language.
std::vector<uint32_t> sort_entries_by_language(dirent** entries, size_t count);

}  // namespace files
