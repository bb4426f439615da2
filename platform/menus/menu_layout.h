// Where the rows of one level are. Sizes are pixels. Rows are measured from the top of the panel's
// content; a scrolled panel shows a part of it. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <vector>

#include "look/menu_look.h"

enum RowKind { title_row, separator_row, view_row, image_row };

struct MenuRow {
    NSMenuItem* item;  // held by the layout
    int top, height;
    RowKind kind;
};

class MenuLayout {
  public:
    // Copies the look. Items are set by update().
    explicit MenuLayout(const MenuLook& look) : look_(look) {}
    ~MenuLayout();
    MenuLayout(const MenuLayout&) = delete;
    MenuLayout& operator=(const MenuLayout&) = delete;

    // Lays out the menu's items that show while `modifiers` are held.
    void update(NSMenu* menu, NSUInteger modifiers);
    // Whether update() would see other items than at its last call.
    bool is_stale(NSMenu* menu, NSUInteger modifiers) const;
    // The modifiers that the rows were chosen for.
    NSUInteger modifiers() const { return modifiers_; }

    // Another number after each update(); no two layouts have the same.
    unsigned revision() const { return revision_; }

    const MenuLook& look() const { return look_; }
    const std::vector<MenuRow>& rows() const { return rows_; }
    int width() const { return width_; }
    int height() const { return height_; }  // of the whole content

    // Left edges within the panel.
    int mark_left() const;
    int image_left() const;
    int title_left(const MenuRow& row) const;
    int title_right() const;
    bool has_images() const { return image_width_ > 0; }
    int image_width() const { return image_width_; }

    // Index of the row at height `y` of the content, -1 where there is none.
    int row_at(int y) const;
    // First row that reaches below `y`; the number of rows if none does.
    int first_row_below(int y) const;
    int row_of(NSMenuItem* item) const;

  private:
    void take_items(NSMenu* menu, NSUInteger modifiers);
    void place_rows();
    void measure_width();
    MenuRow make_row(NSMenuItem* item, int top) const;
    std::vector<NSMenuItem*> widest_items() const;
    int widest_title() const;

    MenuLook look_;
    NSArray* source_ = nil;          // the menu's own array of items, retained
    NSUInteger source_changes_ = 0;  // when the items were taken
    unsigned revision_ = 0;
    NSArray* shown_ = nil;  // the items of the rows, retained
    NSUInteger modifiers_ = 0;
    bool has_alternates_ = false;
    std::vector<MenuRow> rows_;
    int width_ = 0, height_ = 0;
    int image_width_ = 0;  // of the column, 0 for none
    bool has_marks_ = false, has_submenus_ = false;
};

// The size at which an item's image is shown.
NSSize shown_image_size(const MenuLook& look, NSImage* image);
