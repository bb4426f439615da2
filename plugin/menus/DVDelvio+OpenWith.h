// "Open with...": a document's submenu of applications, and what happens when the user picks one.
// Main thread.
#pragma once

#include "controller/DVDelvio.h"

@class DVMenu;

@interface DVDelvio (OpenWith)
// Makes an item's open-with submenu, which the item owns. `isRoot` means that the item is in the
// root menu. The submenu is empty until it opens.
- (DVMenu*)createOpenWithSubmenuForItem:(NSMenuItem*)item isRootMenu:(BOOL)isRoot;
// The same for an item of a deeper level.
- (DVMenu*)createOpenWithSubmenuForItem:(NSMenuItem*)item;
// Adds the lines above the applications: what a pick will do, and the running applications.
- (void)dvAddOpenWithHeadToMenu:(DVMenu*)menu;
// The user has picked an application, in an open-with submenu or in a level below one.
- (void)dvApplicationSelected:(DVMenuItem*)item withOption:(BOOL)optionDown;
@end
