// The open menus as a screen reader's questions see them: numbers and texts, without the toolkit. A
// panel that waits for the user is the first level, below the menus that it opens; its widgets are
// the rows. While nothing waits and no menu is open, a panel that only tells something is the
// level. Main thread.
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
    std::string written;       // of a field: its text
    // The caret's byte there, and the other end of what is selected; -1 without the keyboard.
    int caret = -1, anchor = -1;
    double value = 0;  // of a bar, from 0 to 1; negative while unknown

    bool operator==(const OpenRow&) const = default;
};

struct OpenLevel {
    enum Kind { menu, dialog, alert, progress };
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
    // Of a field: the place of a part of its text, and the character at a point. In bytes.
    virtual Area text_area(size_t level, int row, size_t begin, size_t end) const = 0;
    virtual size_t text_at(size_t level, int row, MenuPoint point) const = 0;

    // These do what the user's hand does, and answer whether anything was done.
    virtual bool highlight(size_t level, int row) = 0;
    virtual bool pick(size_t level, int row) = 0;
    virtual bool open_submenu(size_t level, int row) = 0;
    virtual bool close_submenu(size_t level, int row) = 0;
    // Gives a field the keyboard, this text, and the caret behind so many bytes. What is between
    // caret and anchor is selected.
    virtual bool write(size_t level, int row, const std::string& text, size_t caret,
                       size_t anchor) = 0;
    // The text that programs copy and paste.
    virtual void copy(const std::string& text) = 0;
    virtual std::string copied() = 0;
};
