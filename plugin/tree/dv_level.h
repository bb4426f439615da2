// A level while it is being read: how each name in a folder is handled. Part of the scan.
#pragma once

#include <stdint.h>

#include "tree/dv_scan.h"

enum { DV_LONGEST_NAME = 256 };  // bytes

struct dv_level_t {
    dv_tree_t* root;
    char* path;  // the folder's path, with room for a name, "/" and the terminator
    int32_t level;
    int32_t max_level;
    uint32_t flags;
    uint32_t origin;
    dv_tree_t* heads[DV_KIND_COUNT];  // the level's groups, in the order of their kinds
    dv_tree_t* tails[DV_KIND_COUNT];
};

// Makes an element for a name in the folder, not classified yet. Null for a hidden name, and for a
// name that is too long, which prints a warning.
dv_tree_t* dv_elem_for_name(const dv_level_t& level, const char* name);

// Whether the element stays in the level. Classifies the element, and reads its own level if
// needed.
bool dv_classify_in_level(dv_level_t& level, dv_tree_t* elem);

// Appends the element to its group.
void dv_append_to_level(dv_level_t& level, dv_tree_t* elem);

// Joins the groups, in the order of `sort_order`, into the root's children.
void dv_join_groups(dv_level_t& level);
