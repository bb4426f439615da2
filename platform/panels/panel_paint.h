// Draws what a panel shows. Main thread.
#pragma once

#include <cairo.h>

#include "look/menu_image.h"
#include "panels/panel_content.h"

// The items of the widgets in these states; 0 for none.
struct panel_state_t {
    int hovered = 0, pressed = 0;
    int focused = 0;  // Space hits it

    bool operator==(const panel_state_t&) const = default;
};

struct panel_scene_t {
    const panel_content_t* content;
    panel_state_t state;
    image_cache_t* images;
};

void paint_panel(cairo_t* cairo, const panel_scene_t& scene);
