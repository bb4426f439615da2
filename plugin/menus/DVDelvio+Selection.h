// The selection in the host, and picks in our menus. Main thread.
#pragma once

#include "controller/DVDelvio.h"

// The open menu has its selection. Cleared when the menu is released.
extern uint8_t dvDidGetURLs;

@interface DVDelvio (SelectionActions)
// Takes the host's selected files: NSURLs; other objects are ignored. For each menu, the first list
// with any NSURL wins.
- (void)setSelectedFiles:(NSArray*)files;
// The action of every DVMenuItem.
- (void)dvItemSelected:(id)sender;
@end
