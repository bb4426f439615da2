// The window that the user works with.
#pragma once

#include <sys/types.h>

// The process that the active window names as its own; 0 when none is active, it names none, or
// there is no display. Over a connection of its own, which is kept; a lost one is made again.
pid_t front_window_process();
