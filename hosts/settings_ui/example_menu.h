// A picture of the menu that the present settings give. Main thread.
#pragma once

#include <AppKit/AppKit.h>
#include <cairo.h>

#include <memory>
#include <string>

#include "look/menu_look.h"
#include "x11/menu_geometry.h"

using Picture = std::shared_ptr<cairo_surface_t>;

// The menu of the folder, opened by the plug-in as for a user, with the folder's own level beside
// it, at most as high as `most`. Nothing is shown on the screen.
Picture example_menu(const std::string& folder, const MenuLook& look, Extent most);
