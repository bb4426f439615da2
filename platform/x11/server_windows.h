// Tells window managers and compositors about the toolkit's windows, cuts their outlines, and gives
// them the keyboard. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <vector>

#include "x11/menu_geometry.h"

// Says what kind of window this is: `type` is a name of _NET_WM_WINDOW_TYPE.
void set_window_type(NSWindow* window, const char* type);
// Takes a window that is not yet visible out of the window manager's hands.
void free_from_window_manager(NSWindow* window);
// The same for a window that stands beside or above menus.
void make_tip_window(NSWindow* window);
// Says how far the window's own shadow reaches, as GTK's windows do. Compositors then add no shadow
// of their own.
void tell_drawn_shadow(NSWindow* window, int extent);
// Cuts the window to these rectangles, which count from its upper left corner.
void cut_window(NSWindow* window, const std::vector<Area>& parts);

// For windows that the window manager does manage. The first makes a window a dialog before it is
// shown. The second gives a shown window the keyboard, even when the manager would leave the
// keyboard elsewhere.
void make_dialog_window(NSWindow* window);
void give_keyboard_to_window(NSWindow* window);
bool window_has_keyboard(NSWindow* window);
