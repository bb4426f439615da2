// Elements of folder trees. Every entry of a menu (file, folder, application, ...) is one
// dv_tree_t.
//
// Elements are linked in chains (next) under parents. They share the directory part of their paths
// in reference-counted records. The scan (dv_scan.h) makes elements; all are freed together when
// the menu closes. Main thread. Allocation results are not checked.
#pragma once

#include <stdint.h>

#include <Carbon/Carbon.h>

struct OpaqueMenuRef;

// The directory of several elements, or the whole path of a single element.
struct dv_dir_t {
    uint32_t refcount;     // elements that use it; freed with the last of them
    uint32_t path_len;     // bytes of `path`
    uint32_t name_offset;  // where the last component of `path` starts
    char path[];           // ends in "/" for a scanned directory
};

enum dv_kind_t : int32_t {
    DV_KIND_FOLDER = 0,
    DV_KIND_APPLICATION = 1,
    DV_KIND_PACKAGE = 2,  // a package that is not an application
    DV_KIND_FILE = 3      // anything else
};

// Where an element comes from; children inherit it.
enum : uint32_t {
    DV_ORIGIN_APP_LIST = 1,          // open-with folder, running applications
    DV_ORIGIN_USER_FOLDER = 2,       // a root made from the preference "folders"
    DV_ORIGIN_MOVE_COPY = 4,         // a folder's copy for Move/Copy/Alias
    DV_ORIGIN_SELECTED_FILE = 8,     // a selected item that is not a folder
    DV_ORIGIN_SEPARATOR_AFTER = 64,  // a menu separator follows
};

struct dv_tree_t {
    dv_dir_t* dir;  // holds one reference
    dv_tree_t* parent;
    dv_tree_t* children;  // null while the level has not been read, or when it is empty
    dv_tree_t* next;
    int32_t name_len;  // 0 when the whole path is in `dir`
    int32_t kind;      // dv_kind_t
    int32_t is_container;
    int32_t owns_display_name;
    int32_t visible;      // 0: hidden, but shown dimmed
    uint8_t label;        // Finder label, 0 to 7
    char* display_name;   // UTF-8; `name`, unless owns_display_name
    char* resolved_path;  // owned: an alias's target, or null
    uint32_t origin;
    uint32_t aux;  // carried along in copies
    OpaqueMenuRef* menu;
    char name[];  // the file system's name
};

// The number of elements created (or copied) and freed since the process started.
extern uint32_t alloc_count;
extern uint32_t free_count;

// Makes a directory record, either for a folder's path, which must end in "/", or for the path of a
// single element. It starts without references: the first element takes one.
dv_dir_t* dv_create_folder_dir(const char* path);
dv_dir_t* dv_create_single_dir(const char* path);

// A new visible element of kind file, displayed under its file name. `name_len` below 1: no name.
dv_tree_t* dv_create_elem(dv_dir_t* dir, const char* name, int32_t name_len, uint32_t origin);

// A new unlinked element with the same name and kind, which shares the directory record. Its
// `visible` and `label` are 0.
dv_tree_t* dv_copy_elem(const dv_tree_t* elem);

// Frees the element alone: neither children nor siblings.
void dv_free_elem(dv_tree_t* elem);

// Frees the chain that starts at `elem`, and everything below it. To free one subtree, first take
// it out of its chain. Null is ignored.
void dv_free_tree(dv_tree_t* elem);

// Writes one path per line to standard output, depth first.
void dv_print_tree(const dv_tree_t* elem, int depth);

// Appends `new_elem` to the list from *head to *prev. Null is ignored.
void dv_update_ptrs(dv_tree_t* new_elem, dv_tree_t** prev, dv_tree_t** head);

// Moves the chain in *slot to the end of `forest`, sets *slot to null and returns the forest's
// head. `count` is the number of open menus: below 2 the chain is dropped with a warning, not
// freed.
dv_tree_t* dv_add_to_forest(dv_tree_t** slot, dv_tree_t* forest, int32_t count);

// The element's path, which the caller frees; null for null. An alias gives its target unchanged,
// unless `ignore_resolved` is set. Any other path gets a "/" appended with `trailing_slash`, even
// if it already ends in one.
char* dv_path_for_elem(const dv_tree_t* elem, int trailing_slash, int ignore_resolved);

// The element's own location (an alias, not its target). 1 on success, else 0.
int dv_fsref_for_elem(const dv_tree_t* elem, FSRef* fsref);

// The same as an FSSpec, but with the opposite result: 1 on error, 0 on success or for null.
int dv_elem_to_fsspec(const dv_tree_t* elem, FSSpec* fsspec);
