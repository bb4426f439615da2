// Where a view's pixels are in the surface that it draws into. Main thread.
#pragma once

#include <AppKit/AppKit.h>

struct _cairo;
struct _cairo_matrix;
struct _cairo_surface;

// Maps the coordinates of the view that has the drawing focus to cairo's.
_cairo_matrix focus_matrix(_cairo* cairo);
// The whole pixels that a rectangle of that view covers, counted from the top left.
NSRect focus_device_area(NSRect rect);
// What the view shows now; null when it cannot be drawn into. The caller destroys it.
_cairo_surface* copy_view_pixels(NSView* view);
// Makes the view show such a copy, transparent where the copy is.
void replace_view_pixels(NSView* view, _cairo_surface* copy);
