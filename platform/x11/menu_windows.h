// The windows of menus. Coordinates are the server's: pixels from the upper left. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "x11/menu_geometry.h"

// Makes a window of a menu at `area`, not yet visible; retained for the caller.
NSWindow* new_menu_window(const Area& area);
void move_menu_window(NSWindow* window, const Area& area);
// Cuts the window's corners; radius 0 makes it whole.
void shape_menu_window(NSWindow* window, int radius);
// Cuts the window to a panel in it, whose place counts from the window's upper left corner.
void shape_window_as_panel(NSWindow* window, const Area& panel, int radius);
// Makes the whole window invisible without taking it off the screen, so that a grab stays.
void hide_shape_of_menu_window(NSWindow* window);
void show_menu_window(NSWindow* window);
// Draws the views that need display; nobody else draws them. A view's exception passes on, and the
// view loses the drawing focus.
void display_menu_window(NSWindow* window);
