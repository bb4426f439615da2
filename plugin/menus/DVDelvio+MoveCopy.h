// "Move selection here" and its alternates, at the top of the levels of folders. Main thread.
#pragma once

#include "controller/DVDelvio.h"

@class DVMenu, DVMenuItem;
struct dv_tree_t;

@interface DVDelvio (MoveCopy)
// What a folder's level offers to move into: an element of the copies chain that stands for the
// folder; null for a level that offers nothing.
- (dv_tree_t*)dvMoveCopyElemForElem:(dv_tree_t*)elem;
// The items to move, copy and link the selection into a folder, and a separator. None for a null
// element, in the root menu, and where the selection is the one thing that the menu browses.
- (void)insertMoveCopyElem:(dv_tree_t*)elem forMenu:(NSMenu*)menu;
// One of these items has been picked.
- (void)dvFileOperationSelected:(DVMenuItem*)item;
@end
