// Filling menus: the root level when a menu is taken over, every other level when it first opens.
// Main thread.
#pragma once

#include "controller/DVDelvio.h"

@class DVMenu;
struct dv_tree_t;

@interface DVDelvio (MenuPopulation)
// Rebuilds the root level from the roots in the state record.
- (void)updateProxyMenu;
// Menu delegate. The host's menu: forwarded. A level of our own: filled, the first time;
// a preview menu gets its picture later.
- (void)menuWillOpen:(NSMenu*)menu;

// Reads the level of the menu's element, once, and makes its items, once.
- (void)populateMenu:(DVMenu*)menu;
// Reads the level below an element, unless it is there already.
- (void)populateSubFolderForElem:(dv_tree_t*)elem;
// A submenu for the element's level, to be filled when it opens. The item owns it.
- (DVMenu*)createSubmenuForTree:(dv_tree_t*)tree
                        andItem:(NSMenuItem*)item
                        atLevel:(int32_t)level
                     parentMenu:(NSMenu*)parentMenu;
- (DVMenu*)createSubmenuForTree:(dv_tree_t*)tree andItem:(NSMenuItem*)item atLevel:(int32_t)level;
// A submenu of an application's recent documents; nil, and none on the item, when it has none.
- (DVMenu*)createRecentSubmenuForTree:(dv_tree_t*)tree
                              andItem:(NSMenuItem*)item
                              atLevel:(int32_t)level;
- (NSMenuItem*)createAutoreleasedEmptyFolderItem;

// The path of an element, an alias's target; nil without one.
+ (NSString*)stringPathForTree:(dv_tree_t*)tree;
+ (NSURL*)urlForTree:(dv_tree_t*)tree;
@end
