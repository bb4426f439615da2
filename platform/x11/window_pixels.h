// Draws with cairo in the toolkit's windows, and copies their pixels. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "x11/menu_geometry.h"

struct _cairo;

// The cairo context of the window that has the drawing focus; null where it cannot be reached.
_cairo* focused_cairo();

// Draws the window's present pixels at (x, y) of `cairo`.
void copy_window(NSWindow* window, const Area& part, _cairo* cairo, int x, int y);
