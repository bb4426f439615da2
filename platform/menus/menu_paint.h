// Draws one level of a menu. Main thread.
#pragma once

#include <cairo.h>

#include "look/menu_image.h"
#include "menus/menu_layout.h"

// The parts of a level that are drawn, in whole pixels of what it is drawn on.
struct MenuScene {
    const MenuLayout* layout;
    ImageCache* images;
    NSMenuItem* highlighted;
    bool is_trail;                 // the highlight has led to a deeper one, and is weaker than that
    int left, top, width, height;  // the panel
    int scroll;                    // content above the panel's top
    bool scrolls_up, scrolls_down;
    bool shadow;   // drawn around the panel
    bool rounded;  // corners by transparency; else the window's shape cuts them
};

// Draws the part of the level inside the clip of `cairo`, over the old pixels. Item views are not
// drawn.
void paint_menu(cairo_t* cairo, const MenuScene& scene);

// The outline of a panel.
void add_rounded_rectangle(cairo_t* cairo, double left, double top, double width, double height,
                           double radius);
