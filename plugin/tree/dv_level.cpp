#include "tree/dv_level.h"

#include <stdio.h>
#include <string.h>

namespace {

// Reads the element's children from the entry's path; reads none beyond the last level.
void descend(dv_level_t& level, dv_tree_t* elem) {
    char* name = level.path + level.root->dir->path_len;
    memcpy(name + strlen(name), "/", 2);
    dv_read_children(elem, level.path, level.level + 1, level.max_level, level.flags, level.origin);
}

bool is_dot_or_dots(const char* name) { return !strcmp(name, ".") || !strcmp(name, ".."); }

}  // namespace

dv_tree_t* dv_elem_for_name(const dv_level_t& level, const char* name) {
    const bool hidden = name[0] == '.';
    if (hidden && (!(level.flags & DV_SCAN_DOT_FILES) || is_dot_or_dots(name))) return nullptr;
    const size_t length = strlen(name);
    if (length > DV_LONGEST_NAME) {
        printf("Delvio: Warning, file name too long - skipping entry %s\n", name);
        return nullptr;
    }
    dv_tree_t* elem =
        dv_create_elem(level.root->dir, name, static_cast<int32_t>(length), level.origin);
    if (elem) elem->visible = !hidden;
    return elem;
}

bool dv_classify_in_level(dv_level_t& level, dv_tree_t* elem) {
    memcpy(level.path + level.root->dir->path_len, elem->name, elem->name_len + 1);
    const bool folders_only = level.flags & DV_SCAN_FOLDERS_ONLY;
    switch (dv_process_finder_info(level.path, level.flags, elem)) {
        case DV_ELEM_DROP:
            return false;
        case DV_ELEM_RESOLVED:
            return true;
    }
    if (!elem->is_container) return !folders_only;
    const bool is_folder = elem->kind == DV_KIND_FOLDER;
    if (!is_folder && folders_only) return false;
    if (is_folder || (level.flags & DV_SCAN_PACKAGES)) descend(level, elem);
    return true;
}

void dv_append_to_level(dv_level_t& level, dv_tree_t* elem) {
    const int32_t group = level.flags & DV_SCAN_MIXED ? 0 : elem->kind;
    elem->parent = level.root;
    dv_update_ptrs(elem, &level.tails[group], &level.heads[group]);
}

void dv_join_groups(dv_level_t& level) {
    dv_tree_t** link = &level.root->children;
    for (int i = 0; i < DV_KIND_COUNT; i++) {
        const dv_kind_t kind = sort_order[i];
        if (!level.heads[kind]) continue;
        *link = level.heads[kind];
        link = &level.tails[kind]->next;
    }
}
