// The X server's own list of its clients.
#pragma once

#include <sys/types.h>

namespace test {

// How many connections a process has to the display; -1 where the server cannot tell.
int connections_of(pid_t process);
// How many windows, pixmaps, cursors and other resources these connections hold.
int resources_of(pid_t process);
// The same without counters for synchronisation: the toolkit makes one for each window and never
// destroys it.
int resources_but_counters_of(pid_t process);

}  // namespace test
