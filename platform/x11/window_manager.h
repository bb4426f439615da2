// What the window manager tells in properties of the root window. Main thread.
#pragma once

#include "x11/window_connection.h"

// Whether a window manager runs. Properties that a manager leaves behind when it goes do not count.
bool has_window_manager(const WindowConnection& to);

// The window that the user works with: the one that the manager tells or, without a manager, the
// one that has the keyboard. XCB_WINDOW_NONE when there is none.
xcb_window_t active_window(const WindowConnection& to);
