// Draws an alert. Main thread.
#pragma once

#include <cairo.h>

#include "panels/alert_layout.h"

// The items of the buttons in these states; 0 for none.
struct alert_state_t {
    int hovered = 0, pressed = 0, focused = 0;
};

void paint_alert(cairo_t* cairo, const alert_layout_t& layout, const alert_state_t& state);
