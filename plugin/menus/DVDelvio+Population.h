// Fills menus: the root level when a menu is taken over, and every other level when it first opens.
// Main thread.
#pragma once

#include "controller/DVDelvio.h"

@class DVMenu;
struct dv_tree_t;

@interface DVDelvio (MenuPopulation)
// Rebuilds the root level from the roots in the state record.
- (void)updateProxyMenu;
// Menu delegate method. For the host's menu, the call is forwarded. One of our own levels is filled
// the first time; a preview menu gets its picture later.
- (void)menuWillOpen:(NSMenu*)menu;

// Reads the level of the menu's element and makes its items. Does each only once.
- (void)populateMenu:(DVMenu*)menu;
// Reads the level below an element, unless it has been read.
- (void)populateSubFolderForElem:(dv_tree_t*)elem;
// Makes a submenu for the element's level; it is filled when it opens. The item owns it.
- (DVMenu*)createSubmenuForTree:(dv_tree_t*)tree
                        andItem:(NSMenuItem*)item
                        atLevel:(int32_t)level
                     parentMenu:(NSMenu*)parentMenu;
- (DVMenu*)createSubmenuForTree:(dv_tree_t*)tree andItem:(NSMenuItem*)item atLevel:(int32_t)level;
// Makes a submenu of an application's recent documents. Without recent documents it returns nil and
// the item gets no submenu.
- (DVMenu*)createRecentSubmenuForTree:(dv_tree_t*)tree
                              andItem:(NSMenuItem*)item
                              atLevel:(int32_t)level;
- (NSMenuItem*)createAutoreleasedEmptyFolderItem;

// The path of an element; for an alias, the path of its target; nil without a path.
+ (NSString*)stringPathForTree:(dv_tree_t*)tree;
+ (NSURL*)urlForTree:(dv_tree_t*)tree;
@end
