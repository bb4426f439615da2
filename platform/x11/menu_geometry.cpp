#include "x11/menu_geometry.h"

#include <algorithm>

namespace {

int clamp_start(int start, int length, int low, int high) {
    return std::max(low, std::min(start, high - length));
}

Area fit(Area panel, const Area& screen, int margin) {
    panel.width = std::min(panel.width, screen.width);
    panel.height = std::min(panel.height, screen.height - 2 * margin);
    panel.left = clamp_start(panel.left, panel.width, screen.left, screen.right());
    panel.top = clamp_start(panel.top, panel.height, screen.top + margin, screen.bottom() - margin);
    return panel;
}

// An area where a card may stand, and the ends of the area that it stands at.
struct Room {
    Area area;
    bool at_right, at_bottom;
};

// The share of its size that a card can have in a room; 1 at most.
double fitting_share(Extent card, const Area& room) {
    return std::min({1.0, double(room.width) / card.width, double(room.height) / card.height});
}

// Twice the signed area of the triangle a b c.
long turn(MenuPoint a, MenuPoint b, MenuPoint c) {
    return long(b.x - a.x) * (c.y - a.y) - long(b.y - a.y) * (c.x - a.x);
}

}  // namespace

Area place_at_pointer(Extent panel, MenuPoint pointer, const Area& screen, int margin, Side side) {
    const int right = pointer.x + 1, left = pointer.x - panel.width;
    const bool fits_right = right + panel.width <= screen.right(), fits_left = left >= screen.left;
    const bool at_right = side == on_right ? fits_right : fits_right && !fits_left;
    Area area = {at_right ? right : left, pointer.y + 1, panel.width, panel.height};
    const int above = pointer.y - panel.height;
    if (area.bottom() > screen.bottom() - margin && above >= screen.top + margin) area.top = above;
    return fit(area, screen, margin);
}

Area place_beside(Extent panel, const Area& row, const Area& parent, const Area& screen, int margin,
                  int overlap, int inset, Side* side) {
    const int right = parent.right() - overlap, left = parent.left - panel.width + overlap;
    const bool fits_right = right + panel.width <= screen.right();
    const bool fits_left = left >= screen.left;
    const bool more_room_right = screen.right() - parent.right() >= parent.left - screen.left;
    if (*side == on_right && !fits_right && (fits_left || !more_room_right)) {
        *side = on_left;
    } else if (*side == on_left && !fits_left && (fits_right || more_room_right)) {
        *side = on_right;
    }
    const int start = *side == on_right ? right : left;
    return fit({start, row.top - inset, panel.width, panel.height}, screen, margin);
}

Area resize_in_place(Extent panel, const Area& before, Side side, const Area& screen, int margin) {
    const int left = side == on_right ? before.left : before.right() - panel.width;
    return fit({left, before.top, panel.width, panel.height}, screen, margin);
}

Area place_clear(Extent card, const Area& levels, const Area& row, const Area& screen, int margin,
                 int gap, Side side) {
    const Area inner = {screen.left + margin, screen.top + margin, screen.width - 2 * margin,
                        screen.height - 2 * margin};
    const int right = levels.right() + gap, below = levels.bottom() + gap;
    const Room on_the_right = {
        {right, inner.top, inner.right() - right, inner.height}, false, false};
    const Room on_the_left = {
        {inner.left, inner.top, levels.left - gap - inner.left, inner.height}, true, false};
    const Room rooms[] = {
        side == on_right ? on_the_right : on_the_left,
        side == on_right ? on_the_left : on_the_right,
        {{inner.left, below, inner.width, inner.bottom() - below}, false, false},
        {{inner.left, inner.top, inner.width, levels.top - gap - inner.top}, false, true},
    };
    const Room* best = &rooms[0];
    for (const Room& room : rooms) {
        if (fitting_share(card, room.area) > fitting_share(card, best->area)) best = &room;
    }
    const double share = std::max(0.0, fitting_share(card, best->area));
    const Area& room = best->area;
    const int width = std::max(1, static_cast<int>(card.width * share));
    const int height = std::max(1, static_cast<int>(card.height * share));
    const bool beside = best == &rooms[0] || best == &rooms[1];
    const int near_left = best->at_right ? room.right() - width : room.left;
    const int near_top = best->at_bottom ? room.bottom() - height : room.top;
    return {beside ? near_left : clamp_start(row.left, width, room.left, room.right()),
            beside ? clamp_start(row.top, height, room.top, room.bottom()) : near_top, width,
            height};
}

bool is_on_the_way(MenuPoint from, MenuPoint now, const Area& panel) {
    const bool to_right = panel.left + panel.width / 2 > from.x;
    const int edge = to_right ? panel.left : panel.right();
    const int slack = panel.height / 12 + 4;
    const MenuPoint upper = {edge, panel.top - slack}, lower = {edge, panel.bottom() + slack};
    const long a = turn(from, upper, now), b = turn(upper, lower, now), c = turn(lower, from, now);
    const bool negative = a < 0 || b < 0 || c<0, positive = a> 0 || b > 0 || c > 0;
    return !(negative && positive);
}
