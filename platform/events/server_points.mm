#include "events/server_points.h"

#include <cmath>

#include "events/event_record.h"

CGPoint event_location(ServerPoint point, int display_height) {
    return flipped_point(NSMakePoint(point.x, display_height - point.y));
}

ServerPoint server_point(CGPoint location, int display_height) {
    const NSPoint at = unflipped_point(location);
    return {static_cast<int>(std::lround(at.x)),
            static_cast<int>(std::lround(display_height - at.y))};
}
