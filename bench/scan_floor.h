// The least work of a scan: read the entries' names, what each one is and its Finder information,
// and sort the names.
#pragma once

#include <stddef.h>

namespace bench {

// Reads the folder with getdents64, keeps the names, calls statx and lgetxattr for each, and sorts
// the names with qsort and strcmp. Returns the number of names.
size_t scan_floor(const char* path);

}  // namespace bench
