// The submenu that shows a picture of a file. It is filled when it first opens: at once with a
// turning disc, and later with the picture from a background queue. Main thread.
#pragma once

#include "controller/DVDelvio.h"

@class DVMenu;
@class DVMenuItem;

@interface DVDelvio (PreviewMenu)
// Gives the item a preview menu for its element, and the tag 1. The item owns the menu.
- (DVMenu*)createPreviewSubmenuForItem:(DVMenuItem*)item;
// Starts making the picture of a preview menu, once.
- (void)dvPopulatePreviewMenu:(DVMenu*)menu;
@end
