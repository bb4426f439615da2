// Moving, copying and linking the selection into a folder, and trashing files. The Finder does the
// work, with its own windows. Failures are not shown; each is printed. Main thread.
#pragma once

#include <stdint.h>

struct delvio_t;
struct dv_tree_t;

enum dv_file_op_t : long { DV_FILE_OP_MOVE = 0, DV_FILE_OP_COPY = 1, DV_FILE_OP_ALIAS = 2 };

// Asks the user first when names clash in the destination. `selection` is the first element of a
// chain. An unknown `operation` does nothing. Non-zero `open_after` also opens the destination.
void dv_send_file_op_to_finder(delvio_t* state, dv_tree_t* selection, dv_tree_t* destination,
                               long operation, uint32_t open_after);

// False when the root's path begins with the item's, character for character.
bool dv_can_move_or_copy(const char* root_path, const char* item_path);

// Moves a chain to the trash; user-folder roots only when asked to. A library function: nothing
// calls it.
void dv_move_to_trash(dv_tree_t* list, bool include_user_folders);
