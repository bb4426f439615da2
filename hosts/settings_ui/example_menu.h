// A picture of the menu that the present settings give. Main thread.
#pragma once

#include <AppKit/AppKit.h>
#include <cairo.h>

#include <memory>
#include <string>

#include "look/menu_look.h"
#include "x11/menu_geometry.h"

using Picture = std::shared_ptr<cairo_surface_t>;

// Where the two levels stand in the picture: the second one beside a row of the first one, on the
// side where menus of the look open their submenus. A level without width is left out.
struct ExamplePlaces {
    Area root, level;
    Extent whole;
};
ExamplePlaces example_places(const MenuLook& look, Extent root, int row_top, Extent level,
                             Extent most);

// The menu of the folder, opened by the plug-in as for a user, with the folder's own level beside
// it, at most as high as `most`. Nothing is shown on the screen.
Picture example_menu(const std::string& folder, const MenuLook& look, Extent most);
