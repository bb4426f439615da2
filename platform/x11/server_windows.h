// What window managers and compositors are told about the toolkit's windows, their outlines, and
// the keyboard. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <vector>

#include "x11/menu_geometry.h"

// Says what a window is: `type` is a name of _NET_WM_WINDOW_TYPE.
void set_window_type(NSWindow* window, const char* type);
// Takes a window that is not yet visible out of the window manager's hands.
void free_from_window_manager(NSWindow* window);
// The same for one that stands beside or above menus.
void make_tip_window(NSWindow* window);
// Says how far a shadow reaches that the window draws itself, as GTK's windows do: compositors
// put none of their own around it then.
void tell_drawn_shadow(NSWindow* window, int extent);
// Cuts the window to these rectangles, which count from its upper left corner.
void cut_window(NSWindow* window, const std::vector<area_t>& parts);

// For windows that the window manager does touch: as a dialog, before it is shown; and with the
// keyboard once it is, also when the manager would rather leave that elsewhere.
void make_dialog_window(NSWindow* window);
void give_keyboard_to_window(NSWindow* window);
bool window_has_keyboard(NSWindow* window);
