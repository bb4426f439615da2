#include "x11/pointer_place.h"

#include <X11/Xlib.h>

#include "x11/question_connection.h"

PointerPlace pointer_place() {
    PointerPlace place;
    Display* display = question_connection();
    if (!display) return place;
    Window root, child;
    int x, y;
    unsigned width, height = 0, border, depth;
    // The size is asked each time, as the screen may have been resized.
    if (!XQueryPointer(display, DefaultRootWindow(display), &root, &child, &place.x, &place.y, &x,
                       &y, &place.state) ||
        !XGetGeometry(display, DefaultRootWindow(display), &root, &x, &y, &width, &height, &border,
                      &depth)) {
        return {};
    }
    place.display_height = static_cast<int>(height);
    return place;
}

unsigned pointer_state() { return pointer_place().state; }
