#include "finder/dv_file_ops.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <memory>

#include "finder/dv_conflicts.h"
#include "finder/dv_event.h"
#include "finder/dv_open.h"
#include "support/dv_log.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

struct free_t {
    void operator()(char* text) const { free(text); }
};
using chars_t = std::unique_ptr<char, free_t>;

const struct operation_t {
    long code;
    AEEventID event_id;
    AEKeyword items;
} operations[] = {
    {DV_FILE_OP_MOVE, kAEMove, keyDirectObject},
    {DV_FILE_OP_COPY, kAEClone, keyDirectObject},
    {DV_FILE_OP_ALIAS, kAECreateElement, keyAETo},
};

const operation_t* operation_for(long code) {
    for (const operation_t& known : operations) {
        if (known.code == code) return &known;
    }
    return nullptr;
}

unsigned shown(const dv_tree_t* elem) {
    return static_cast<unsigned>(reinterpret_cast<uintptr_t>(elem));
}

Boolean ask_about_conflicts(delvio_t* state, dv_tree_t* destination, dv_tree_t* selection) {
    Boolean replace = 0;
    state->file_op_in_progress = 1;
    dv_check_for_filename_conflicts(destination, selection, &replace);
    state->file_op_in_progress = 0;
    return replace;
}

// False ends the operation. When no alias can be made, the event goes out without a destination,
// and the Finder chooses one.
bool put_destination(const FSRef* ref, AppleEvent* event) {
    dv_desc_t alias;
    OSErr error = noErr;
    switch (dv_make_alias_desc(ref, alias.get(), &error)) {
        case DV_ALIAS_NO_HANDLE:
            printf("Error creating alias handle: %d\n", error);
            return true;
        case DV_ALIAS_NO_DESC:
            printf("Error creating dest alias desc: %d\n", error);
            return false;
        case DV_ALIAS_OK:
            break;
    }
    error = AEPutParamDesc(event, keyAEInsertHere, alias.get());
    if (error != noErr) printf("Delvio: Error putting dest FSRef: %d\n", error);
    return error == noErr;
}

const dv_tree_t* root_of(const dv_tree_t* elem) {
    const dv_tree_t* root = elem;
    if (dvEnableDebugOutput) dvdprintf("Delvio: First parent %x\n", shown(root->parent));
    while (root->parent) {
        root = root->parent;
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Climbing tree, parent now %x\n", shown(root));
        }
    }
    return root;
}

// The tree that contains the destination.
struct tree_root_t {
    const dv_tree_t* elem;
    chars_t path;
};

bool is_left_out(const dv_tree_t* item, const char* path, const tree_root_t& root, long operation) {
    const bool alias = operation == DV_FILE_OP_ALIAS;
    // A link to the root may be made inside the root.
    const bool linked_root = alias && strcmp(path, root.path.get()) == 0;
    if (!linked_root && !dv_can_move_or_copy(root.path.get(), path)) {
        if (dvEnableDebugOutput) dvdprintf(" Skipping..\n");
        return true;
    }
    if (dvEnableDebugOutput) dvdprintf(" Continuing..\n");
    if (item == root.elem && !alias) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: Skip cur==parent\n");
        return true;
    }
    if (item->origin & DV_ORIGIN_USER_FOLDER) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: Skip custom folder\n");
        return true;
    }
    return false;
}

void append_selection(const dv_tree_t* selection, const tree_root_t& root, long operation,
                      AEDescList* list) {
    for (const dv_tree_t* item = selection; item; item = item->next) {
        const chars_t path(dv_path_for_elem(item, 0, 1));
        if (!path) {
            printf("Failed to get path for item\n");
            continue;
        }
        if (dvEnableDebugOutput) dvdprintf("Delvio: Process: %s\n", path.get());
        if (!is_left_out(item, path.get(), root, operation)) dv_append_alias(item, list);
    }
}

tree_root_t tree_of(const dv_tree_t* destination) {
    tree_root_t root = {};
    root.elem = root_of(destination);
    root.path.reset(dv_path_for_elem(root.elem, 0, 1));
    if (dvEnableDebugOutput) dvdprintf("Delvio: Parent is %s\n", root.path.get());
    return root;
}

}  // namespace

void dv_send_file_op_to_finder(delvio_t* state, dv_tree_t* selection, dv_tree_t* destination,
                               long operation, uint32_t open_after) {
    const Boolean replace = ask_about_conflicts(state, destination, selection);
    const operation_t* wanted = operation_for(operation);
    dv_desc_t event, list;
    if (!wanted || !dv_create_core_event(wanted->event_id, event.get())) return;
    if (operation == DV_FILE_OP_ALIAS) {
        const DescType kind = typeAlias;
        AEPutParamPtr(event.get(), keyAEObjectClass, typeType, &kind, sizeof kind);
    }
    FSRef ref;
    if (!dv_fsref_for_elem(destination, &ref)) {
        printf("Failed to get fsref for destination\n");
        return;
    }
    if (!put_destination(&ref, event.get())) return;
    const tree_root_t root = tree_of(destination);
    if (!root.path) {
        printf("Failed to get path for destination\n");
        return;
    }
    // The folder is opened before the operation, so that its window is there when the items arrive.
    if (open_after) dv_send_open_to_finder(&ref);

    AECreateList(nullptr, 0, false, list.get());
    append_selection(selection, root, operation, list.get());
    dv_send_items(event.get(), wanted->items, list.get(), replace);
}

bool dv_can_move_or_copy(const char* root_path, const char* item_path) {
    return strncmp(root_path, item_path, strlen(item_path)) != 0;
}

void dv_move_to_trash(dv_tree_t* list, bool include_user_folders) {
    dv_desc_t event, items;
    if (!dv_create_core_event(kAEDelete, event.get())) return;
    AECreateList(nullptr, 0, false, items.get());
    for (const dv_tree_t* item = list; item; item = item->next) {
        if (item->origin & DV_ORIGIN_USER_FOLDER && !include_user_folders) {
            printf("Not trashing: %s\n", item->name);
            if (dvEnableDebugOutput) dvdprintf("Delvio: Skip custom folder\n");
            continue;
        }
        dv_append_alias(item, items.get());
    }
    dv_send_items(event.get(), keyDirectObject, items.get(), false);
}
