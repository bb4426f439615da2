// Checks whether a folder already has files with the same names, and asks the user what to do. Main
// thread.
#pragma once

#include <Carbon/Carbon.h>

struct dv_tree_t;

// Sets *replace to 1 when names in the selection (a chain) clash with names in the destination and
// the user wants those files replaced; otherwise leaves it as it is. Reads the destination's level
// if it has not been read, and keeps it.
void dv_check_for_filename_conflicts(dv_tree_t* destination, const dv_tree_t* selection,
                                     Boolean* replace);

// Asks the user. Returns 0 when the files are to be replaced. Runs the event loop until the answer.
int dv_display_should_trash_files_alert();
