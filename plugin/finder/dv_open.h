// Opening: by the Finder, or with an application of the user's choice. Nothing is logged, and
// nothing is known of the outcome. Main thread.
#pragma once

#include <Carbon/Carbon.h>

// Asks the Finder to open the file. A failure to build the event is returned; one to send it is
// not.
OSErr dv_send_open_to_finder(const FSRef* ref);
