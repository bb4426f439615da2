// This process's own connection to the X server for questions about pointer and keys. GNUstep's
// connection is no place for them: a reply read from it can leave events behind that no longer
// wake the run loop. Main thread.
#pragma once

typedef struct _XDisplay Display;

// Null without a display. Owned by the process; a first call may take the time of a connection.
Display* pointer_connection();

// The state of the pointer's buttons and of the modifiers as XQueryPointer tells it, or 0.
unsigned pointer_state();
