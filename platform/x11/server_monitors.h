// The monitors of the X server, and whether a Wayland compositor stands behind it. Any thread.
#pragma once

#include <string>
#include <vector>

// Pixels from the upper left.
struct ScreenArea {
    int x, y, width, height;
    bool operator==(const ScreenArea&) const = default;
};

struct Monitor {
    std::string name;
    ScreenArea area;
};

std::vector<Monitor> server_monitors();

// Whether the server is Xwayland, which shows its windows by a compositor.
bool server_is_xwayland();
