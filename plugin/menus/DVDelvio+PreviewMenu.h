// The submenu that shows a picture of a file. It is filled when it first opens: with a turning disc
// at once, with the picture when a background queue has made it. Main thread.
#pragma once

#include "controller/DVDelvio.h"

@class DVMenu;
@class DVMenuItem;

@interface DVDelvio (PreviewMenu)
// Gives the item a preview menu of its element, and the tag 1. The item owns the menu.
- (DVMenu*)createPreviewSubmenuForItem:(DVMenuItem*)item;
// Begins the picture of a preview menu, once.
- (void)dvPopulatePreviewMenu:(DVMenu*)menu;
@end
