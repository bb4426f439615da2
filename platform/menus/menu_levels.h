// The levels of one popup as the screen shows them, kept in step with what its session has open.
// Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <memory>
#include <vector>

#include "menus/menu_level.h"
#include "menus/menu_session.h"

class MenuLevels {
  public:
    using List = std::vector<std::unique_ptr<MenuLevel>>;

    MenuLevels(MenuSession* session, NSFont* font);
    ~MenuLevels();
    MenuLevels(const MenuLevels&) = delete;
    MenuLevels& operator=(const MenuLevels&) = delete;

    MenuSession* session() const { return session_; }
    const MenuStyle& style() const { return style_; }
    const List& all() const { return levels_; }
    bool empty() const { return levels_.empty(); }
    size_t size() const { return levels_.size(); }
    MenuLevel& operator[](size_t index) const { return *levels_[index]; }

    // Where the first level is to be.
    void set_origin(MenuPoint origin) { origin_ = origin; }
    // The keys that choose between alternates.
    void set_modifiers(NSUInteger modifiers) { modifiers_ = modifiers; }

    // These note a change to bring in step: of the session's levels or highlights, of a menu's
    // items, or of the pixels of an item's image that keeps its size.
    void session_changed() { changed_ = true; }
    void menu_changed(NSMenu* menu);
    void image_changed(NSImage* image);

    // Brings windows and rows in step with the session. Delegates may change the session during the
    // call.
    void synchronize();
    // Whether there is something to bring in step or to draw.
    bool needs_synchronizing() const;
    // The item that took over the highlight from an item whose row has gone, nil for none. Answers
    // once.
    NSMenuItem* take_follower();

    // The topmost level at a point, -1 for none.
    int level_at(MenuPoint point) const;
    NSMenuItem* item_at(MenuPoint point) const;
    NSMenuItem* highlighted_item(size_t index) const;
    // The item whose submenu a level is.
    NSMenuItem* parent_item(size_t index) const;

    void hide();
    void clear();

  private:
    void follow_session();
    void show(size_t index);
    NSUInteger modifiers_for(size_t index) const;
    bool synchronize_rows(size_t index);
    void show_highlights();
    void follow_rows(size_t index, int row_before);

    MenuSession* session_;  // retained
    ImageCache images_;
    MenuStyle style_;
    List levels_;
    MenuPoint origin_ = {};
    NSUInteger modifiers_ = 0;
    bool changed_ = false;
    NSMenuItem* follower_ = nil;  // retained
};
