// Root trees that do not depend on the selection: the user's folders and the open-with folder.
// Main thread.
#pragma once

#include <stdint.h>

struct delvio_t;
struct dv_tree_t;

// Appends an element for each entry in the setting "folders" to the list from *head to *tail.
// *current is the element of the latest entry, or null if that entry gave none. A "-" marks the
// element before it. An entry that is not a string, or leads nowhere, is left out. `scan_flags` is
// added to the flags from the settings, `origin` to the origin of user folders.
void dv_add_user_directories(delvio_t* state, dv_tree_t** current, dv_tree_t** tail,
                             dv_tree_t** head, uint32_t scan_flags, uint32_t origin);

// The root of the open-with folder, with its level read; null when there is no such folder. The
// caller owns it.
dv_tree_t* dv_build_open_with_tree(delvio_t* state);
