#include "appkit/pointer_connection.h"

#include <X11/Xlib.h>
#include <fcntl.h>
#include <stdlib.h>

#include <string>

namespace {

Display* open_connection() {
    Display* display = XOpenDisplay(nullptr);
    if (display) fcntl(ConnectionNumber(display), F_SETFD, FD_CLOEXEC);
    return display;
}

// A keyboard layout may change while we run.
void follow_keyboard(Display* display) {
    while (XPending(display)) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type == MappingNotify) XRefreshKeyboardMapping(&event.xmapping);
    }
}

}  // namespace

Display* pointer_connection() {
    static Display* display;
    static std::string refused;
    const char* name = getenv("DISPLAY");
    if (!display) {
        if (!name || !*name || refused == name) return nullptr;
        display = open_connection();
        if (!display) refused = name;
    }
    if (display) follow_keyboard(display);
    return display;
}

unsigned pointer_state() {
    Display* display = pointer_connection();
    if (!display) return 0;
    Window root, child;
    int root_x, root_y, x, y;
    unsigned state = 0;
    XQueryPointer(display, DefaultRootWindow(display), &root, &child, &root_x, &root_y, &x, &y,
                  &state);
    return state;
}
