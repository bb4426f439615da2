// One open level on the screen: its window, what it shows, how far it is scrolled. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <unordered_map>

#include "menus/menu_layout.h"
#include "menus/menu_paint.h"
#include "x11/menu_geometry.h"

@class MenuLevelView, MenuItemHolder;

// What all levels of one popup share.
struct MenuStyle {
    MenuLook look;
    bool composed;  // panels have soft corners and a shadow
    ImageCache* images;
};

class MenuLevel {
  public:
    MenuLevel(NSMenu* menu, const MenuStyle& style);
    ~MenuLevel();
    MenuLevel(const MenuLevel&) = delete;
    MenuLevel& operator=(const MenuLevel&) = delete;

    // No other level has the same.
    unsigned number() const { return number_; }
    NSMenu* menu() const { return menu_; }
    const MenuLayout& layout() const { return layout_; }
    NSWindow* window() const { return window_; }
    const Area& panel() const { return panel_; }
    const Area& screen() const { return screen_; }
    Side side() const { return side_; }
    bool is_shown() const { return shown_; }

    // The menu's items or what they show may have changed.
    void mark_changed() { changed_ = true; }
    // Lays the level out again if needed; true if it did.
    bool refresh(NSUInteger modifiers);

    // Puts the panel on the screen; nothing happens while the level has no rows.
    void show_at_pointer(MenuPoint pointer);
    void show_beside(const MenuLevel& parent, NSMenuItem* item);
    // Gives a shown panel its layout's new size.
    void resize();
    void hide();
    // Leaves a shown level's window to the caller, who closes and releases it. The level is over.
    NSWindow* give_window();

    // With `is_trail`, the highlight is shown as one that has led to a deeper level's.
    void set_highlight(NSMenuItem* item, bool is_trail);

    bool contains(MenuPoint point) const { return shown_ && panel_.contains(point); }
    // Index of the row under a point, -1 over none.
    int row_at(MenuPoint point) const;
    NSMenuItem* item_at(MenuPoint point) const;
    Area row_area(int row) const;
    // -1 over the strip that scrolls up, 1 over the one that scrolls down.
    int edge_at(MenuPoint point) const;

    // How many pixels of the content are above the panel.
    int scroll() const { return scroll_; }
    // Scrolls towards the end by pixels; false at the end of the way.
    bool scroll_by(int pixels);
    // Scrolls as little as possible to show a row whole.
    void reveal(int row);
    // The number of rows that the panel shows at once.
    int rows_per_page() const;

    void redraw();
    // Called by the view.
    void draw(NSRect dirty);
    // Asks for images whose pictures may come late, before their rows are scrolled into sight.
    void look_ahead() const;
    // Draws the level as it is shown, with its panel's corner at (left, top) of a picture.
    void draw_picture(cairo_t* cairo, int left, int top, bool shadow) const;

  private:
    void put_on_screen();
    void place_views();
    void remove_views();
    void redraw_row(NSMenuItem* item);
    int margin() const { return style_.composed ? style_.look.shadow_extent : 0; }
    int most_scroll() const;
    int strip(int direction) const;
    MenuScene scene(bool shadow) const;

    const unsigned number_;
    NSMenu* menu_;  // retained
    const MenuStyle& style_;
    MenuLayout layout_;
    bool changed_ = true;
    NSWindow* window_ = nil;
    MenuLevelView* view_ = nil;
    std::unordered_map<NSView*, MenuItemHolder*> holders_;  // both retained
    NSMenuItem* highlighted_ = nil;                         // retained
    bool is_trail_ = false;
    Area panel_ = {}, screen_ = {};
    Side side_;
    int scroll_ = 0;
    bool shown_ = false;
};
