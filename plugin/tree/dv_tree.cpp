#include "tree/dv_tree.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "support/dv_log.h"

uint32_t alloc_count;
uint32_t free_count;

namespace {

// `scan_from`: where the backward search for the "/" before the name starts.
dv_dir_t* create_dir(const char* path, size_t path_len, ptrdiff_t scan_from) {
    auto* dir = static_cast<dv_dir_t*>(calloc(1, sizeof(dv_dir_t) + path_len + 1));
    if (!dir) return nullptr;
    dir->path_len = static_cast<uint32_t>(path_len);
    memcpy(dir->path, path, path_len);
    for (ptrdiff_t i = scan_from; i > 0; i--) {
        if (path[i] != '/') continue;
        dir->name_offset = static_cast<uint32_t>(i + 1);
        break;
    }
    return dir;
}

void release_dir(dv_dir_t* dir) {
    if (--dir->refcount == 0) free(dir);
}

}  // namespace

dv_dir_t* dv_create_folder_dir(const char* path) {
    const size_t length = strlen(path);
    return create_dir(path, length, static_cast<ptrdiff_t>(length) - 2);
}

dv_dir_t* dv_create_single_dir(const char* path) {
    const size_t length = strlen(path);
    return create_dir(path, length, static_cast<ptrdiff_t>(length) - 1);
}

dv_tree_t* dv_create_elem(dv_dir_t* dir, const char* name, int32_t name_len, uint32_t origin) {
    if (name_len < 1) name_len = 0;
    if (!dir) return nullptr;
    auto* elem = static_cast<dv_tree_t*>(calloc(1, sizeof(dv_tree_t) + name_len + 1));
    if (!elem) {
        if (dir->refcount == 0) free(dir);
        return nullptr;
    }
    elem->dir = dir;
    dir->refcount++;
    elem->kind = DV_KIND_FILE;
    elem->visible = 1;
    elem->origin = origin;
    elem->display_name = elem->name;
    elem->name_len = name_len;
    if (name_len) memcpy(elem->name, name, name_len);
    alloc_count++;
    return elem;
}

dv_tree_t* dv_copy_elem(const dv_tree_t* elem) {
    dv_tree_t* copy = dv_create_elem(elem->dir, elem->name, elem->name_len, elem->origin);
    if (!copy) return nullptr;
    copy->kind = elem->kind;
    copy->aux = elem->aux;
    copy->is_container = elem->is_container;
    copy->visible = 0;
    if (elem->resolved_path) copy->resolved_path = strdup(elem->resolved_path);
    char* display_name = elem->owns_display_name ? strdup(elem->display_name) : nullptr;
    if (display_name) {
        copy->display_name = display_name;
        copy->owns_display_name = 1;
    }
    return copy;
}

void dv_free_elem(dv_tree_t* elem) {
    free_count++;
    release_dir(elem->dir);
    if (elem->owns_display_name) free(elem->display_name);
    free(elem->resolved_path);
    free(elem);
}

void dv_free_tree(dv_tree_t* elem) {
    while (elem) {
        dv_tree_t* next = elem->next;
        dv_free_tree(elem->children);
        dv_free_elem(elem);
        elem = next;
    }
}

void dv_print_tree(const dv_tree_t* elem, int depth) {
    for (; elem; elem = elem->next) {
        printf("%s%s\n", elem->dir->path, elem->name_len < 1 ? "" : elem->name);
        dv_print_tree(elem->children, depth + 1);
    }
}

void dv_update_ptrs(dv_tree_t* new_elem, dv_tree_t** prev, dv_tree_t** head) {
    if (!new_elem) return;
    if (*prev) {
        (*prev)->next = new_elem;
    } else if (*head) {
        printf("Delvio: Warning, we have a root pointer, but we haven't got a prev ptr?\n");
    } else {
        *head = new_elem;
    }
    *prev = new_elem;
}

dv_tree_t* dv_add_to_forest(dv_tree_t** slot, dv_tree_t* forest, int32_t count) {
    if (!*slot) return forest;
    if (count < 2) {
        printf("Delvio: Odd; we apparently have an invalid root pointer: %p\n",
               static_cast<void*>(*slot));
    } else {
        dv_tree_t** link = &forest;
        while (*link) link = &(*link)->next;
        *link = *slot;
    }
    *slot = nullptr;
    return forest;
}

char* dv_path_for_elem(const dv_tree_t* elem, int trailing_slash, int ignore_resolved) {
    if (!elem) return nullptr;
    if (elem->resolved_path && !ignore_resolved) return strdup(elem->resolved_path);
    const size_t dir_len = elem->dir->path_len;
    const size_t name_len = elem->name_len > 0 ? elem->name_len : 0;
    auto* path = static_cast<char*>(calloc(dir_len + name_len + 2, 1));
    if (!path) return nullptr;
    memcpy(path, elem->dir->path, dir_len);
    memcpy(path + dir_len, elem->name, name_len);
    if (trailing_slash) path[dir_len + name_len] = '/';
    return path;
}

int dv_fsref_for_elem(const dv_tree_t* elem, FSRef* fsref) {
    char* path = dv_path_for_elem(elem, 0, 1);
    if (!path) return 0;
    const OSStatus status = FSPathMakeRef(reinterpret_cast<const UInt8*>(path), fsref, nullptr);
    if (status != noErr && dvEnableDebugOutput) {
        dvdprintf("Delvio: FSPathMakeRef failed: %ld for path '%s'\n", static_cast<long>(status),
                  path);
    }
    free(path);
    return status == noErr;
}

int dv_elem_to_fsspec(const dv_tree_t* elem, FSSpec* fsspec) {
    char* path = dv_path_for_elem(elem, 0, 1);
    if (!path) return 0;
    FSRef ref = {};
    FSPathMakeRef(reinterpret_cast<const UInt8*>(path), &ref, nullptr);
    free(path);
    return FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, fsspec, nullptr) != noErr;
}
