// The windows of menus. Coordinates are the server's: pixels from the upper left. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "x11/menu_geometry.h"

// A window of a menu, at `area`, not yet visible; retained for the caller.
NSWindow* new_menu_window(const area_t& area);
void move_menu_window(NSWindow* window, const area_t& area);
// Cuts the window's corners; radius 0 makes it whole.
void shape_menu_window(NSWindow* window, int radius);
// Leaves nothing of the window to be seen, without taking it from the screen: a grab stays.
void hide_shape_of_menu_window(NSWindow* window);
void show_menu_window(NSWindow* window);
// Draws what needs it; nobody else does. What a view raises passes, and takes its focus along.
void display_menu_window(NSWindow* window);
