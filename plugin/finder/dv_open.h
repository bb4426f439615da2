// Opening files in the Finder, or with an application that the user chooses. Nothing is logged, and
// the outcome is not reported. Main thread.
#pragma once

#include <Carbon/Carbon.h>

struct delvio_t;
struct dv_tree_t;

// Asks the Finder to open the file. Returns an error from building the event, but not from sending
// it.
OSErr dv_send_open_to_finder(const FSRef* ref);

// Opens documents with the application, all in one request. With `many`: the chain that starts at
// `documents`, without user-folder roots; otherwise this one element. `state` is not used.
void dv_open_file_with_app(delvio_t* state, const dv_tree_t* documents,
                           const dv_tree_t* application, bool many);
