// Converts between flipped event locations and the X server's pixels, which count from the upper
// left of the whole display. Any thread.
#pragma once

#include <CoreGraphics/CGEvent.h>

struct server_point_t {
    int x, y;
};

CGPoint event_location(server_point_t point, int display_height);
server_point_t server_point(CGPoint location, int display_height);
