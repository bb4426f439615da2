// The least work that a scan can be: the entries' names, what each is, its Finder information, and
// names in order.
#pragma once

#include <stddef.h>

namespace bench {

// Reads the folder with getdents64, keeps the names, asks statx and lgetxattr for each, sorts the
// names with qsort and strcmp. Returns the count of names.
size_t scan_floor(const char* path);

}  // namespace bench
