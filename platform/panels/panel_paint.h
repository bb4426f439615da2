// Draws what a panel shows. Main thread.
#pragma once

#include <cairo.h>

#include "look/menu_image.h"
#include "panels/panel_content.h"

// The items of the widgets in these states; 0 for none.
struct PanelState {
    int hovered = 0, pressed = 0;
    int focused = 0;  // Space hits it
    // Of a field with the focus, in bytes. What stands between the two is selected.
    size_t caret = 0, anchor = 0;
    bool takes_drop = false;  // files are dragged over the panel

    bool operator==(const PanelState&) const = default;
};

struct PanelScene {
    const PanelContent* content;
    PanelState state;
    ImageCache* images;
};

void paint_panel(cairo_t* cairo, const PanelScene& scene);
