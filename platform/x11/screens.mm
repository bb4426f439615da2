#include "x11/screens.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "x11/pointer_place.h"
#include "x11/toolkit_display.h"

namespace {

long distance(const Area& area, MenuPoint point) {
    const long x = std::max({area.left - point.x, 0, point.x - area.right() + 1});
    const long y = std::max({area.top - point.y, 0, point.y - area.bottom() + 1});
    return x * x + y * y;
}

std::vector<Area> screens() {
    std::vector<Area> areas;
    int count = 0;
    const ::Window root = DefaultRootWindow(toolkit_display());
    XRRMonitorInfo* monitors = XRRGetMonitors(toolkit_display(), root, True, &count);
    for (int i = 0; i < count; i++) {
        const XRRMonitorInfo& monitor = monitors[i];
        if (monitor.width > 0 && monitor.height > 0) {
            areas.push_back({monitor.x, monitor.y, monitor.width, monitor.height});
        }
    }
    if (monitors) XRRFreeMonitors(monitors);
    return areas;
}

}  // namespace

const char* server_resources() { return XResourceManagerString(toolkit_display()); }

bool windows_are_composed() {
    char name[32];
    snprintf(name, sizeof name, "_NET_WM_CM_S%d", DefaultScreen(toolkit_display()));
    return XGetSelectionOwner(toolkit_display(), XInternAtom(toolkit_display(), name, False)) !=
           None;
}

Pointer current_pointer() {
    ::Window root, child;
    int x = 0, y = 0, inner_x, inner_y;
    unsigned mask = 0;
    XQueryPointer(toolkit_display(), DefaultRootWindow(toolkit_display()), &root, &child, &x, &y,
                  &inner_x, &inner_y, &mask);
    correct_pointer(&x, &y, &mask);
    const unsigned buttons =
        (mask & Button1Mask ? 1 : 0) | (mask & Button3Mask ? 2 : 0) | (mask & Button2Mask ? 4 : 0);
    return {{x, y}, buttons};
}

MenuPoint server_point(NSPoint point) {
    return {static_cast<int>(std::floor(point.x)),
            toolkit_display_height() - static_cast<int>(std::ceil(point.y))};
}

NSPoint screen_point(MenuPoint point) {
    return NSMakePoint(point.x, toolkit_display_height() - point.y);
}

Area screen_at(MenuPoint point) {
    const std::vector<Area> areas = screens();
    const auto nearest =
        std::min_element(areas.begin(), areas.end(), [point](const Area& one, const Area& other) {
            return distance(one, point) < distance(other, point);
        });
    if (nearest != areas.end()) return *nearest;
    return {0, 0, DisplayWidth(toolkit_display(), DefaultScreen(toolkit_display())),
            toolkit_display_height()};
}
