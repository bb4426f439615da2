#include "support/announced_window.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include "support/window_properties.h"

namespace test {

namespace {

std::string name_of(Display* display, long atom) {
    char* name = XGetAtomName(display, static_cast<Atom>(atom));
    const std::string text = name ? name : "";
    if (name) XFree(name);
    return text;
}

long shadow_of(const std::vector<long>& extents) {
    if (extents.size() != 4) return -1;
    for (const long extent : extents) {
        if (extent != extents[0]) return -1;
    }
    return extents[0];
}

}  // namespace

std::vector<AnnouncedWindow> announced_windows() {
    std::vector<AnnouncedWindow> announced;
    Display* display = XOpenDisplay(nullptr);
    Window root, parent, *windows = nullptr;
    unsigned count = 0;
    XQueryTree(display, DefaultRootWindow(display), &root, &parent, &windows, &count);
    for (unsigned i = 0; i < count; i++) {
        XWindowAttributes attributes = {};
        XGetWindowAttributes(display, windows[i], &attributes);
        const std::vector<long> types = numbers_of(display, windows[i], "_NET_WM_WINDOW_TYPE");
        if (attributes.map_state != IsViewable || types.empty()) continue;
        announced.push_back({title_of(display, windows[i]), name_of(display, types[0]),
                             attributes.override_redirect != False,
                             shadow_of(numbers_of(display, windows[i], "_GTK_FRAME_EXTENTS"))});
    }
    if (windows) XFree(windows);
    XCloseDisplay(display);
    return announced;
}

bool listed_windows_are_there() {
    Display* display = XOpenDisplay(nullptr);
    XErrorHandler before = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    bool are_there = true;
    for (const long window : numbers_of(display, DefaultRootWindow(display), "_NET_CLIENT_LIST")) {
        XWindowAttributes attributes;
        are_there &= XGetWindowAttributes(display, static_cast<Window>(window), &attributes) != 0;
    }
    XSetErrorHandler(before);
    XCloseDisplay(display);
    return are_there;
}

Compositor::Compositor() : display_(XOpenDisplay(nullptr)) {
    const Window window =
        XCreateSimpleWindow(display_, DefaultRootWindow(display_), -1, -1, 1, 1, 0, 0, 0);
    XSetSelectionOwner(display_, XInternAtom(display_, "_NET_WM_CM_S0", False), window,
                       CurrentTime);
    XSync(display_, False);
}

Compositor::~Compositor() { XCloseDisplay(display_); }

}  // namespace test
