// Opening: by the Finder, or with an application of the user's choice. Nothing is logged, and
// nothing is known of the outcome. Main thread.
#pragma once

#include <Carbon/Carbon.h>

struct delvio_t;
struct dv_tree_t;

// Asks the Finder to open the file. A failure to build the event is returned; one to send it is
// not.
OSErr dv_send_open_to_finder(const FSRef* ref);

// Opens documents with the application, all in one request: with `many` the chain that starts at
// `documents`, but for user-folder roots; else this one element. `state` is not used.
void dv_open_file_with_app(delvio_t* state, const dv_tree_t* documents,
                           const dv_tree_t* application, bool many);
