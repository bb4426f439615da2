#include "x11/window_pixels.h"

#include <X11/Xlib.h>
#include <cairo-xlib.h>
#include <objc/runtime.h>

#include "x11/toolkit_display.h"

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
