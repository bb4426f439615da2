// What is selected in the host, and what is picked in our menus. Main thread.
#pragma once

#include "controller/DVDelvio.h"

// The selection of the open menu has been taken; cleared when the menu is released.
extern uint8_t dvDidGetURLs;

@interface DVDelvio (SelectionActions)
// The host's selected files: NSURLs, other objects are ignored. The first list of a menu that holds
// any wins.
- (void)setSelectedFiles:(NSArray*)files;
// The action of every DVMenuItem.
- (void)dvItemSelected:(id)sender;
@end
