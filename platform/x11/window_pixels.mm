#include "x11/window_pixels.h"

#include <X11/Xlib.h>
#include <cairo-xlib.h>
#include <objc/runtime.h>

#include "x11/toolkit_display.h"

namespace {

// The toolkit gives all its windows the same.
int depth_of_windows(Window window) {
    static const int depth = [window] {
        XWindowAttributes attributes;
        return XGetWindowAttributes(toolkit_display(), window, &attributes) ? attributes.depth : 0;
    }();
    return depth;
}

// What the toolkit has drawn of a window, which lies in the server; None where it cannot be
// reached.
Pixmap drawn_pixels(NSWindow* window) {
    NSView* view = [window contentView];
    [view lockFocus];
    cairo_t* cairo = focused_cairo();
    cairo_surface_t* surface = cairo ? cairo_get_target(cairo) : nullptr;
    const bool is_usable =
        surface && cairo_surface_get_type(surface) == CAIRO_SURFACE_TYPE_XLIB &&
        cairo_xlib_surface_get_depth(surface) == depth_of_windows(server_window(window));
    if (is_usable) cairo_surface_flush(surface);
    const Pixmap pixels = is_usable ? cairo_xlib_surface_get_drawable(surface) : None;
    [view unlockFocus];
    return pixels == server_window(window) ? None : pixels;
}

}  // namespace

_cairo* focused_cairo() {
    // The context is the back end's own. Both fields have had these names since its first release.
    id context = [NSGraphicsContext currentContext];
    Ivar state_variable = class_getInstanceVariable([context class], "gstate");
    if (!state_variable) return nullptr;
    id state = object_getIvar(context, state_variable);
    Ivar cairo_variable = class_getInstanceVariable([state class], "_ct");
    if (!cairo_variable) return nullptr;
    const char* fields = reinterpret_cast<const char*>(state);
    return *reinterpret_cast<cairo_t* const*>(fields + ivar_getOffset(cairo_variable));
}

// The server refers to the pixmap and makes no copy. So the window also shows what is drawn into
// the pixmap after this call.
ShownWithPixels::ShownWithPixels(NSWindow* window) {
    const Pixmap pixels = drawn_pixels(window);
    if (pixels == None) return;
    window_ = server_window(window);
    XSetWindowBackgroundPixmap(toolkit_display(), window_, pixels);
}

// The toolkit's background of a clear window.
ShownWithPixels::~ShownWithPixels() {
    if (window_) XSetWindowBackground(toolkit_display(), window_, 0);
}

void copy_window(NSWindow* window, const Area& part, _cairo* cairo, int x, int y) {
    XWindowAttributes attributes;
    if (!XGetWindowAttributes(toolkit_display(), server_window(window), &attributes)) return;
    cairo_surface_t* surface =
        cairo_xlib_surface_create(toolkit_display(), server_window(window), attributes.visual,
                                  attributes.width, attributes.height);
    cairo_save(cairo);
    cairo_set_source_surface(cairo, surface, x - part.left, y - part.top);
    cairo_rectangle(cairo, x, y, part.width, part.height);
    cairo_fill(cairo);
    cairo_restore(cairo);
    cairo_surface_destroy(surface);
}
