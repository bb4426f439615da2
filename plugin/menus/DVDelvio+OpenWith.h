// "Open with...": the submenu of a document, and what picking an application in it does. Main
// thread.
#pragma once

#include "controller/DVDelvio.h"

@class DVMenu;

@interface DVDelvio (OpenWith)
// An item's open-with submenu, which the item owns; `isRoot`: the item stands in the root menu. It
// is empty until it opens.
- (DVMenu*)createOpenWithSubmenuForItem:(NSMenuItem*)item isRootMenu:(BOOL)isRoot;
// For an item of a deeper level.
- (DVMenu*)createOpenWithSubmenuForItem:(NSMenuItem*)item;
// The lines that stand above the applications: what a pick will do, and the running applications.
- (void)dvAddOpenWithHeadToMenu:(DVMenu*)menu;
// An application has been picked, in an open-with submenu or a level below one.
- (void)dvApplicationSelected:(DVMenuItem*)item withOption:(BOOL)optionDown;
@end
