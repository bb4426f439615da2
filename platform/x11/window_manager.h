// What the window manager tells by properties of the root window. Main thread.
#pragma once

#include "x11/window_connection.h"

// Whether one runs. The properties of a manager that has gone stay, and are not believed.
bool has_window_manager(const window_connection_t& to);

// The window that the user works with: as the manager tells it; the one that has the keyboard where
// no manager runs. None when there is no such window.
xcb_window_t active_window(const window_connection_t& to);
