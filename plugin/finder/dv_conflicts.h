// Whether files of the same names stand in a folder already, and what the user says to that. Main
// thread.
#pragma once

#include <Carbon/Carbon.h>

struct dv_tree_t;

// Sets *replace to 1 when names of the selection (a chain) clash with those in the destination and
// the user wants those files replaced; else leaves it as it is. Reads the destination's level
// unless it is there, and leaves it there.
void dv_check_for_filename_conflicts(dv_tree_t* destination, const dv_tree_t* selection,
                                     Boolean* replace);

// Asks the user. 0: the files are to be replaced. Runs the event loop meanwhile.
int dv_display_should_trash_files_alert();
