// The X server's own list of its clients.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>

namespace test {

// How many connections a process has to the display; -1 where the server cannot tell.
int connections_of(pid_t process);
// How many windows, pixmaps, cursors and other resources of each kind these connections hold.
using Resources = std::map<std::string, int>;
Resources resources_of(pid_t process);

}  // namespace test
