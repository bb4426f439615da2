// Where panels go on a screen. Coordinates are pixels from the upper left.
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

// Places a panel at the pointer: below and right of it, or on the other side where the panel does
// not fit, but always on the screen. A panel that is too high takes the whole height of the screen.
area_t place_at_pointer(extent_t panel, point_t pointer, const area_t& screen, int margin);

// Places a panel beside a row of its parent, with its first row level with that row. `*side` is the
// preferred side and becomes the side taken. `overlap` pixels lie over the parent.
area_t place_beside(extent_t panel, const area_t& row, const area_t& parent, const area_t& screen,
                    int margin, int overlap, int inset, side_t* side);

// Places a panel of a new size where the old one was: the top and the edge on the fixed side stay.
area_t resize_in_place(extent_t panel, const area_t& before, side_t side, const area_t& screen,
                       int margin);

// Places a card clear of the open levels, which lie within `levels`: level with `row` on the
// preferred side, else on the other side, else below or above. A card that fits nowhere shrinks in
// proportion and takes the place with the most room.
area_t place_clear(extent_t card, const area_t& levels, const area_t& row, const area_t& screen,
                   int margin, int gap, side_t side);

// Whether a pointer that was at `from` and is at `now` is on its way to an open panel: inside the
// triangle between `from` and the panel's near edge.
bool is_on_the_way(point_t from, point_t now, const area_t& panel);
