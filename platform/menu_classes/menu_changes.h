// Reports changes of menus that GNUstep's own menu view does not show: by a plain function call in
// place of a notification for each item, so that filling a level of thousands costs nothing. Main
// thread.
#pragma once

#include <AppKit/AppKit.h>

// Called after an item was added to or removed from a menu (`item` is nil), or changed in it.
typedef void (*MenuChangeListener)(NSMenu* menu, NSMenuItem* item);

// A process has one listener; null removes it.
void set_menu_change_listener(MenuChangeListener listener);
