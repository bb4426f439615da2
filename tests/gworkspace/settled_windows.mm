#include "gworkspace/settled_windows.h"

#include <GNUstepGUI/GSDisplayServer.h>

// Xlib's headers come after AppKit's, because some names are the same.
#include <X11/Xlib.h>

namespace {

// The probe's own connection, so that it takes no events away from the program.
Display* connection() {
    static Display* display = XOpenDisplay(nullptr);
    return display;
}

Window x_window(NSWindow* window) {
    void* device = [GSServerForWindow(window) windowDevice:[window windowNumber]];
    return reinterpret_cast<Window>(device);
}

// The upper left corner of a rectangle on the screen, in X's coordinates.
NSPoint corner_of(NSRect rect) {
    return NSMakePoint(NSMinX(rect), NSHeight([[NSScreen mainScreen] frame]) - NSMaxY(rect));
}

NSRect content_of(NSWindow* window) {
    NSView* view = [window contentView];
    NSRect rect = [view convertRect:[view bounds] toView:nil];
    rect.origin = [window convertBaseToScreen:rect.origin];
    return rect;
}

bool is_at(NSPoint believed, int x, int y) {
    return static_cast<int>(believed.x) == x && static_cast<int>(believed.y) == y;
}

// The frame that a window manager has put around it, or the window itself.
Window outermost(Window window) {
    Window root = 0, parent = 0, *children = nullptr;
    unsigned count = 0;
    while (XQueryTree(connection(), window, &root, &parent, &children, &count)) {
        if (children) XFree(children);
        if (parent == root || !parent) break;
        window = parent;
    }
    return window;
}

// The position counted from the back; -1 for none.
int height_of(Window wanted) {
    Window root = 0, parent = 0, *children = nullptr;
    unsigned count = 0;
    int height = -1;
    XQueryTree(connection(), DefaultRootWindow(connection()), &root, &parent, &children, &count);
    for (unsigned i = 0; i < count; i++) {
        if (children[i] == wanted) height = static_cast<int>(i);
    }
    if (children) XFree(children);
    return height;
}

}  // namespace

bool stands_over(NSWindow* window, NSWindow* other) {
    if (window == other || ![window isVisible] || ![other isVisible]) return false;
    return NSIntersectsRect([window frame], [other frame]) &&
           height_of(outermost(x_window(window))) > height_of(outermost(x_window(other)));
}

bool is_settled(NSWindow* window) {
    XWindowAttributes attributes;
    const Window shown = [window windowNumber] > 0 ? x_window(window) : 0;
    if (!shown || !XGetWindowAttributes(connection(), shown, &attributes)) return false;
    if (attributes.map_state != IsViewable) return false;
    int x = 0, y = 0;
    Window child;
    XTranslateCoordinates(connection(), shown, attributes.root, 0, 0, &x, &y, &child);
    // With the title bar in the window, or around it.
    return is_at(corner_of(content_of(window)), x, y) || is_at(corner_of([window frame]), x, y);
}

bool keyboard_is_in(NSWindow* window) {
    Window focus = 0;
    int revert = 0;
    if (![window isKeyWindow]) return false;
    XGetInputFocus(connection(), &focus, &revert);
    return focus == x_window(window);
}
