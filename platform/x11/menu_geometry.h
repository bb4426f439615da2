// Where panels go on a screen. Pixels from the upper left.
#pragma once

struct point_t {
    int x, y;
};

struct extent_t {
    int width, height;
};

struct area_t {
    int left, top, width, height;

    int right() const { return left + width; }
    int bottom() const { return top + height; }
    bool operator==(const area_t&) const = default;
    bool contains(point_t point) const {
        return point.x >= left && point.x < right() && point.y >= top && point.y < bottom();
    }
};

enum side_t { on_right, on_left };

// A panel at the pointer: below and right of it, on the other side where that does not fit, and
// never out of the screen; what is too high for the screen takes its whole height.
area_t place_at_pointer(extent_t panel, point_t pointer, const area_t& screen, int margin);

// A panel beside a row of its parent, its first row level with that row. `*side` is the side to
// prefer and becomes the one taken. `overlap` pixels lie over the parent.
area_t place_beside(extent_t panel, const area_t& row, const area_t& parent, const area_t& screen,
                    int margin, int overlap, int inset, side_t* side);

// A panel of a new size where an old one was: its edge on the fixed side and its top stay.
area_t resize_in_place(extent_t panel, const area_t& before, side_t side, const area_t& screen,
                       int margin);

// A card over none of the open levels, which lie within `levels`: level with `row`, on the side to
// prefer, else on the other, else below or above. Where it fits nowhere whole it takes the place
// with the most room, and is smaller in proportion.
area_t place_clear(extent_t card, const area_t& levels, const area_t& row, const area_t& screen,
                   int margin, int gap, side_t side);

// Whether a pointer that was at `from` and is at `now` is on its way to an open panel: inside the
// triangle between `from` and the panel's near edge.
bool is_on_the_way(point_t from, point_t now, const area_t& panel);
