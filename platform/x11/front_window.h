// The window that the user works with.
#pragma once

#include <sys/types.h>

// The process of the active window: the one that it names, else the one that has made it. 0 when no
// window is active, its process is on another machine, or there is no display. Over a connection of
// its own, which is kept; a lost one is made again.
pid_t front_window_process();
