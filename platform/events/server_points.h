// Converts between flipped event locations and the X server's pixels, which count from the upper
// left of the whole display. Any thread.
#pragma once

#include <CoreGraphics/CGEvent.h>

struct ServerPoint {
    int x, y;
};

CGPoint event_location(ServerPoint point, int display_height);
ServerPoint server_point(CGPoint location, int display_height);
