// "Move selection here" and its alternates, at the top of the levels of folders. Main thread.
#pragma once

#include "controller/DVDelvio.h"

@class DVMenu, DVMenuItem;
struct dv_tree_t;

@interface DVDelvio (MoveCopy)
// The target that a folder's level offers for moves: an element in the copies chain for that
// folder; null for a level that offers none.
- (dv_tree_t*)dvMoveCopyElemForElem:(dv_tree_t*)elem;
// Adds items to move, copy and link the selection into a folder, and a separator. Adds none for a
// null element, in the root menu, and when the selection is the only thing that the menu browses.
- (void)insertMoveCopyElem:(dv_tree_t*)elem forMenu:(NSMenu*)menu;
// The user has picked one of these items.
- (void)dvFileOperationSelected:(DVMenuItem*)item;
@end
