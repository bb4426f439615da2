// A thread's own connection to the X server for questions: about pointer and keys, and on the main
// thread about windows. GNUstep's connection cannot serve: reading a reply from it can leave events
// behind that no longer wake the run loop. Any thread; each has its own connection.
#pragma once

typedef struct _XDisplay Display;

// Null without a display, and once the display has gone. The thread owns the connection, and closes
// it when it ends; a connection that has gone stays until then as well. The first call opens it,
// which may take a moment.
Display* question_connection();
