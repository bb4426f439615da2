// Follows the pointer of a menu: highlights the item that it rests on, opens the item's submenu
// after a moment, and leaves an open submenu alone while the pointer is on its way there. Main
// thread.
#pragma once

#include "events/deadline.h"
#include "menus/menu_levels.h"

class MenuHover {
  public:
    explicit MenuHover(MenuLevels& levels) : levels_(levels) {}
    ~MenuHover() { [item_ release]; }
    MenuHover(const MenuHover&) = delete;
    MenuHover& operator=(const MenuHover&) = delete;

    // The pointer came to a place in the rows of a level.
    void move_to(int level, MenuPoint point);
    // The same, even if the pointer may be on its way to an open submenu.
    void enter(int level, MenuPoint point);
    // The pointer left all levels.
    void leave();
    // The pointer rests on this item from now on.
    void rest_on(NSMenuItem* item);
    // The pointer's place has no effect until the pointer moves.
    void stop();
    void stop_aiming() { is_aiming_ = false; }
    // Opens the submenu of an item at once.
    void open_submenu(NSMenuItem* item);

    double due() const { return timer_.due; }
    // Called when due() has come: the pointer has rested at `point`.
    void rest(MenuPoint point);

  private:
    bool aims(int level, MenuPoint point);
    void set_item(NSMenuItem* item);

    MenuLevels& levels_;
    NSMenuItem* item_ = nil;  // retained; the item that the timer is for
    Deadline timer_;
    MenuPoint aim_from_ = {};
    bool is_aiming_ = false;
};
