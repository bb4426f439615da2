// Reads one level of a folder into tree elements: classified, filtered, sorted as the Finder sorts
// names, grouped by kind. Main thread.
#pragma once

#include <dirent.h>
#include <stdint.h>

#include "tree/dv_tree.h"

struct delvio_t;

enum : uint32_t {
    DV_SCAN_DOT_FILES = 1,      // keep names that begin with ".", as not visible
    DV_SCAN_INVISIBLE = 2,      // keep items whose Finder flags say invisible, as not visible
    DV_SCAN_MIXED = 4,          // one alphabetical list, not grouped by kind
    DV_SCAN_PACKAGES = 8,       // packages and applications are levels too
    DV_SCAN_FOLDERS_ONLY = 16,  // keep only folders and aliases to folders
};

enum { DV_KIND_COUNT = 4, DV_SORT_ORDER_COUNT = 4 };

// The possible orders of the groups in a level. `sort_order` points at the row in use.
extern const dv_kind_t sort_orders[DV_SORT_ORDER_COUNT][DV_KIND_COUNT];
extern const dv_kind_t default_sort_order[DV_KIND_COUNT];
extern const dv_kind_t* sort_order;

// Uses a row of `sort_orders`, 0 to 3, from now on.
void dv_set_sort_order(uint32_t row);

// The scan flags for the current preferences (all except DV_SCAN_FOLDERS_ONLY).
uint32_t dv_get_flags(const delvio_t* state);

// A temporary root (folder, empty name) whose children are the level at `path`; null when the path
// is not a readable folder. For an alias that resolves, the root has no children. The caller takes
// the children, sets their parent and frees the root alone (dv_free_elem).
// `level` counts up to `max_level`: 0 and 1 read one level, as every menu does.
dv_tree_t* dv_build_tree(const char* path, int32_t level, int32_t max_level, uint32_t flags,
                         uint32_t origin);

// Reads the level at `path` as the element's children. The children stay as they are when the path
// is not a readable folder, or is below the last level.
void dv_read_children(dv_tree_t* elem, const char* path, int32_t level, int32_t max_level,
                      uint32_t flags, uint32_t origin);

// One classified element for `path`, with its whole path in its directory record; null when the
// element is hidden or does not exist. Names that begin with "." are not hidden here.
dv_tree_t* dv_build_single_elem(const char* path, uint32_t flags, uint32_t origin);

// What to do with an element after classification.
enum { DV_ELEM_KEEP = 0, DV_ELEM_DROP = 1, DV_ELEM_RESOLVED = 2 };

// Classifies the element for `path` in place: kind, display name, label, visibility, alias target.
// DV_ELEM_RESOLVED means that it is an alias and stays as a leaf.
int dv_process_finder_info(const char* path, uint32_t flags, dv_tree_t* elem);

// The order of two directory entries, for scandir: case-insensitive, digits as numbers, bytes
// widened to characters one by one.
int dv_sort(const struct dirent** a, const struct dirent** b);
