// Where panels go on a screen. Coordinates are pixels from the upper left.
#pragma once

struct MenuPoint {
    int x, y;
};

struct Extent {
    int width, height;
};

struct Area {
    int left, top, width, height;

    int right() const { return left + width; }
    int bottom() const { return top + height; }
    bool operator==(const Area&) const = default;
    bool contains(MenuPoint point) const {
        return point.x >= left && point.x < right() && point.y >= top && point.y < bottom();
    }
};

enum Side { on_right, on_left };

// Places a panel at the pointer: below it and on the side, or on the other side where the panel
// does not fit, but always on the screen. A panel that is too high takes the whole height of the
// screen.
Area place_at_pointer(Extent panel, MenuPoint pointer, const Area& screen, int margin,
                      Side side = on_right);

// Places a panel beside a row of its parent, with its first row level with that row. `*side` is the
// preferred side and becomes the side taken. `overlap` pixels lie over the parent.
Area place_beside(Extent panel, const Area& row, const Area& parent, const Area& screen, int margin,
                  int overlap, int inset, Side* side);

// Places a panel of a new size where the old one was: the top and the edge on the fixed side stay.
Area resize_in_place(Extent panel, const Area& before, Side side, const Area& screen, int margin);

// Places a card clear of the open levels, which lie within `levels`: level with `row` on the
// preferred side, else on the other side, else below or above. A card that fits nowhere shrinks in
// proportion and takes the place with the most room.
Area place_clear(Extent card, const Area& levels, const Area& row, const Area& screen, int margin,
                 int gap, Side side);

// Whether a pointer that was at `from` and is at `now` is on its way to an open panel: inside the
// triangle between `from` and the panel's near edge.
bool is_on_the_way(MenuPoint from, MenuPoint now, const Area& panel);
