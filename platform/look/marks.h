// The lines of a menu's marks: chevrons, states, arrows. Main thread.
#pragma once

#include <cairo.h>

#include "look/menu_look.h"

void set_color(cairo_t* cairo, const Color& color, double share = 1);

// Strokes the path with the line of all marks.
void stroke_mark(cairo_t* cairo, const MenuLook& look, const Color& color);

// Where a chevron stands in its own surface. Its places between pixels are those in the menu.
struct Chevron {
    double back, tip, middle, reach;
    int mark_width;
    bool operator==(const Chevron&) const = default;
};

// The pixels that a chevron covers. They are kept, because all rows of a menu have the same, and
// stroking a line takes ten times as long as painting such a surface. Valid until the next call.
cairo_surface_t* chevron_mask(const Chevron& chevron, const MenuLook& look);
