// Draws the parts of a panel. Main thread.
#pragma once

#include <cairo.h>

#include "look/menu_image.h"
#include "look/menu_look.h"
#include "operations_ui/parts_panel.h"
#include "x11/menu_geometry.h"

namespace operations {

struct PartsScene {
    const std::vector<Part>* parts;
    menu_look_t look;
    image_cache_t* images;
    extent_t size;  // pixels
    const Part* hovered;
    const Part* pressed;
    const Part* focused;  // the one that Space hits
};

int PixelsOf(const menu_look_t& look, double points);
area_t AreaOf(const menu_look_t& look, const Part& part);
void PaintParts(cairo_t* cairo, const PartsScene& scene);

}  // namespace operations
