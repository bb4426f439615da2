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

// Of a menu that goes.
void forget_menu_font(NSMenu* menu);

// Tells the main menu and its submenus when the application has launched or becomes active.
@interface MenuLaunchObserver : NSObject
// Once a process; again does nothing.
+ (void)start;
@end
