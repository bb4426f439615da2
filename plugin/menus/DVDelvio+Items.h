// Makes the items of one level: the items for each element, and the separators and headings between
// them.
#pragma once

#include "controller/DVDelvio.h"

struct dv_tree_t;

@interface DVDelvio (MenuItems)
// Adds items for a chain of elements to a menu, in order.
- (void)insertItems:(dv_tree_t*)elems forMenu:(NSMenu*)menu;
// The same, below the items that move the selection to `target`; a null `target` adds none of
// these.
- (void)insertItems:(dv_tree_t*)elems forMenu:(NSMenu*)menu withMoveCopyElem:(dv_tree_t*)target;
- (void)dvAddSeparatorToMenu:(NSMenu*)menu;
// An autoreleased item that does nothing when picked.
- (NSMenuItem*)dvPlainItemWithTitle:(NSString*)title enabled:(BOOL)enabled;
@end
