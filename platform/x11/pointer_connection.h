// A thread's own connection to the X server for questions about pointer and keys. GNUstep's
// connection is no place for them: a reply read from it can leave events behind that no longer
// wake the run loop. Any thread; each has its own.
#pragma once

typedef struct _XDisplay Display;

// Null without a display, and from when it has gone. Owned by the thread; a first call may take the
// time of a connection.
Display* pointer_connection();

// Where the pointer is, in pixels from the upper left, and what is held.
struct pointer_place_t {
    int x = 0, y = 0;
    unsigned state = 0;      // buttons and modifiers, as XQueryPointer tells them
    int display_height = 0;  // 0 without a display
};
pointer_place_t pointer_place();

// Its state alone.
unsigned pointer_state();
