// The root trees of the state record, built for each menu: the user's folders, the open-with folder
// and the running applications. Main thread.
#pragma once

#include "controller/DVDelvio.h"

struct dv_tree_t;

@interface DVDelvio (RootTrees)
// Fills the empty slots. The settings must have been read.
- (void)createUserTrees;
// The running applications that appear in the Dock, by name.
- (void)createRunningAppsList;
// A new chain of an application's recent documents, owned by the caller; null when there are none.
- (dv_tree_t*)getRecentItemsForElem:(dv_tree_t*)elem;
@end
