#include "x11/server_windows.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/shape.h>
#include <unistd.h>

#include "x11/toolkit_display.h"

namespace {

// A window manager takes a moment to map a window.
bool wait_until_viewable(::Window window) {
    for (int tries = 0; tries < 100; tries++) {
        XWindowAttributes attributes;
        if (!XGetWindowAttributes(toolkit_display(), window, &attributes)) return false;
        if (attributes.map_state == IsViewable) return true;
        usleep(10000);
    }
    return false;
}

}  // namespace

void set_window_type(NSWindow* window, const char* type) {
    const Atom property = XInternAtom(toolkit_display(), "_NET_WM_WINDOW_TYPE", False);
    Atom atom = XInternAtom(toolkit_display(), type, False);
    XChangeProperty(toolkit_display(), server_window(window), property, XA_ATOM, 32,
                    PropModeReplace, reinterpret_cast<unsigned char*>(&atom), 1);
}

void free_from_window_manager(NSWindow* window) {
    XSetWindowAttributes attributes = {};
    attributes.override_redirect = True;
    attributes.save_under = True;
    XChangeWindowAttributes(toolkit_display(), server_window(window),
                            CWOverrideRedirect | CWSaveUnder, &attributes);
}

void cut_window(NSWindow* window, const std::vector<Area>& parts) {
    std::vector<XRectangle> rectangles;
    for (const Area& part : parts) {
        rectangles.push_back({static_cast<short>(part.left), static_cast<short>(part.top),
                              static_cast<unsigned short>(part.width),
                              static_cast<unsigned short>(part.height)});
    }
    XShapeCombineRectangles(toolkit_display(), server_window(window), ShapeBounding, 0, 0,
                            rectangles.data(), static_cast<int>(rectangles.size()), ShapeSet,
                            Unsorted);
    XFlush(toolkit_display());
}

void make_tip_window(NSWindow* window) {
    free_from_window_manager(window);
    set_window_type(window, "_NET_WM_WINDOW_TYPE_TOOLTIP");
}

void tell_drawn_shadow(NSWindow* window, int extent) {
    const Atom property = XInternAtom(toolkit_display(), "_GTK_FRAME_EXTENTS", False);
    const long sides[] = {extent, extent, extent, extent};
    XChangeProperty(toolkit_display(), server_window(window), property, XA_CARDINAL, 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(sides), 4);
}

void make_dialog_window(NSWindow* window) { set_window_type(window, "_NET_WM_WINDOW_TYPE_DIALOG"); }

void give_keyboard_to_window(NSWindow* window) {
    const ::Window target = server_window(window);
    if (!wait_until_viewable(target)) return;
    XEvent message = {};
    message.xclient.type = ClientMessage;
    message.xclient.window = target;
    message.xclient.message_type = XInternAtom(toolkit_display(), "_NET_ACTIVE_WINDOW", False);
    message.xclient.format = 32;
    message.xclient.data.l[0] = 2;  // asked for by the user
    XSendEvent(toolkit_display(), DefaultRootWindow(toolkit_display()), False,
               SubstructureRedirectMask | SubstructureNotifyMask, &message);
    XSetInputFocus(toolkit_display(), target, RevertToParent, CurrentTime);
    XSync(toolkit_display(), False);
}

bool window_has_keyboard(NSWindow* window) {
    ::Window focused = None;
    int revert = 0;
    XGetInputFocus(toolkit_display(), &focused, &revert);
    return focused == server_window(window);
}
