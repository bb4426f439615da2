// What happens to menus that GNUstep's own menu view does not show: a plain function call in place
// of a notification an item, so that filling a level of thousands costs nothing. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Called after an item was added to or removed from a menu (`item` is nil), or changed in it.
typedef void (*menu_change_listener_t)(NSMenu* menu, NSMenuItem* item);

// One listener a process; null ends it.
void set_menu_change_listener(menu_change_listener_t listener);
