// Questions about other programs' windows, over the main thread's connection for questions: through
// XCB, where a question about a window that has just gone is no fatal error. Main thread.
#pragma once

#include <xcb/xcb.h>

struct WindowConnection {
    struct _XDisplay* display = nullptr;
    xcb_connection_t* server = nullptr;
    xcb_window_t root = XCB_WINDOW_NONE;
    bool tells_processes = false;  // the server says which process a client is

    xcb_atom_t wm_state, client_machine, supporting_wm_check, client_list, active_window, pid,
        window_type, type_normal, state, skip_taskbar;
};

// Null without a display, and once the display has gone.
const WindowConnection* window_connection();
