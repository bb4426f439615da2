// The open menus as a screen reader's questions see them: numbers and texts, without the toolkit. A
// panel that waits for the user is the first level, below the menus that it opens; its widgets are
// the rows.
// Main thread.
#pragma once

#include <stddef.h>

#include <string>

#include "x11/menu_geometry.h"

struct OpenRow {
    enum Kind {
        item,
        check_item,
        separator,
        // Widgets of panels:
        text,
        button,
        check_box,
        choice,
        list_item,
        field,
        bar,
    };
    Kind kind = item;
    std::string name;  // the whole one, also where the menu shows a shortened one
    bool is_enabled = false, is_checked = false, is_mixed = false;
    bool has_submenu = false;
    bool can_be_picked = false;
    bool is_in_sight = false;  // not scrolled away
    bool is_default = false;   // Return hits it

    bool operator==(const OpenRow&) const = default;
};

struct OpenLevel {
    enum Kind { menu, dialog, alert };
    Kind kind = menu;
    unsigned number = 0;    // no other level has had it
    unsigned revision = 0;  // changes with what the rows show
    int scroll = 0;
    int rows = 0;
    int highlighted = -1;  // row, -1 for none
    int parent_row = -1;   // the row of the level before whose submenu this is, -1 for none
    std::string name;

    bool operator==(const OpenLevel&) const = default;
};

// Where a row stands among those that are no separators, both from 1: "3 of 12". A widget of a
// panel stands in its group; without one, both are 0.
struct RowPlace {
    int place = 0, count = 0;
};

class OpenMenus {
  public:
    virtual ~OpenMenus() = default;

    virtual std::string application() const = 0;
    // The levels of the innermost popup, root first. 0 when nothing is open.
    virtual size_t levels() const = 0;
    virtual OpenLevel level(size_t level) const = 0;
    virtual Area level_area(size_t level) const = 0;

    virtual OpenRow row(size_t level, int row) const = 0;
    virtual Area row_area(size_t level, int row) const = 0;
    virtual RowPlace row_place(size_t level, int row) const = 0;
    // -1 for none.
    virtual int row_at(size_t level, MenuPoint point) const = 0;

    // These do what the user's hand does, and answer whether anything was done.
    virtual bool highlight(size_t level, int row) = 0;
    virtual bool pick(size_t level, int row) = 0;
    virtual bool open_submenu(size_t level, int row) = 0;
    virtual bool close_submenu(size_t level, int row) = 0;
};
