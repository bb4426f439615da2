// A thread's own connection to the X server for questions: about pointer and keys, and on the main
// thread about windows. GNUstep's connection is no place for them: a reply read from it can leave
// events behind that no longer wake the run loop. Any thread; each has its own.
#pragma once

typedef struct _XDisplay Display;

// Null without a display, and from when it has gone. Owned by the thread; a first call may take the
// time of a connection.
Display* question_connection();
