// A connection to the display for questions about other programs' windows. Main thread.
#pragma once

#include <xcb/xcb.h>

struct WindowConnection {
    xcb_connection_t* server = nullptr;
    xcb_window_t root = XCB_WINDOW_NONE;
    bool tells_processes = false;  // the server says which process a client is

    xcb_atom_t wm_state, client_machine, supporting_wm_check, client_list, active_window, pid,
        window_type, type_normal, state, skip_taskbar;
};

// Opened at first use, and again when it has broken. Null without a display.
const WindowConnection* window_connection();
