// A menu's parts that come into being on first need.
#pragma once

#include <AppKit/AppKit.h>

@interface NSMenu (LightArrays)
// Gives the menu arrays of its own, before anything is added and before a view points at them.
- (void)needArrays;
@end

@interface NSMenu (LightStorage)
// Whether GNUstep's own menu view and windows exist for this menu.
- (BOOL)hasStockRepresentation;
- (void)needStockRepresentation;
@end

// Whether nothing was added to the menu and nothing of it was made since it was initialized.
bool is_untouched(NSMenu* menu);

// Whether this is the item array that all menus without items share. It stays for ever.
bool is_array_of_no_items(id items);

// Whether the item has a view or an attributed title.
bool has_extras(NSMenuItem* item);
// Whether no item of any menu has either.
bool no_item_has_extras();

// Gives a new item its title and its key.
void give_title_and_key(NSMenuItem* item, NSString* title, NSString* key);

bool has_menu_font(NSMenu* menu);
// Called when a menu is deallocated.
void forget_menu_font(NSMenu* menu);

// Tells the main menu and its submenus when the application has launched or becomes active.
@interface MenuLaunchObserver : NSObject
+ (void)start;
@end
// Starts it once a process; further calls do nothing.
void observe_launch();
