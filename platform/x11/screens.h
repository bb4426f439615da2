// The display that the toolkit is connected to: its screens, its pointer, its resources.
// Coordinates are the server's: pixels from the upper left. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "x11/menu_geometry.h"

struct Pointer {
    MenuPoint at;
    unsigned buttons;  // that are down: 1 left, 2 right, 4 any other
};

// The resource string of the server, null for none.
const char* server_resources();
// Whether windows are composed, so that they may be transparent.
bool windows_are_composed();

Pointer current_pointer();
// Between the server's points and GNUstep's, which count from the lower left.
MenuPoint server_point(NSPoint point);
NSPoint screen_point(MenuPoint point);

// The screen under a point, or the nearest.
Area screen_at(MenuPoint point);
