#include "menus/DVDelvio+Population.h"

#include <stdlib.h>

#include "items/DVMenu.h"
#include "items/DVMenuItem.h"
#include "menus/DVDelvio+Items.h"
#include "menus/DVDelvio+MoveCopy.h"
#include "menus/DVDelvio+OpenWith.h"
#include "menus/DVDelvio+PreviewMenu.h"
#include "menus/DVDelvio+Proxy.h"
#include "menus/DVDelvio+Roots.h"
#include "support/dv_log.h"
#include "tree/dv_scan.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

@implementation DVDelvio (MenuPopulation)

- (void)updateProxyMenu {
    [self dvEmptyProxyMenu];
    [_proxyMenu setAutoenablesItems:NO];
    const BOOL separate = dv->root != nullptr;
    if (dv->custom && dv->custom_folder_order == 1) {
        [self insertItems:dv->custom forMenu:_proxyMenu];
        if (separate) [self dvAddSeparatorToMenu:_proxyMenu];
    }
    [self dvInsertSelectionRoots];
    if (dv->custom && dv->custom_folder_order == 0) {
        if (separate) [self dvAddSeparatorToMenu:_proxyMenu];
        [self insertItems:dv->custom forMenu:_proxyMenu];
    }
    [self dvAddSeparatorToMenu:_proxyMenu];
    if (dv->finderInSeparateSubmenu) [self dvAddFinderItem];
}

- (void)dvEmptyProxyMenu {
    // The highlighted item may be removed here, or may have gone with an earlier menu.
    _currentlyHighlightedItem = nil;
    if (dv->finderInSeparateSubmenu) {
        [_proxyMenu removeAllItems];
        // These items are no longer in the menu, so an index based on them would be out of range.
        [rootItems removeAllObjects];
    } else {
        [self removeRootItems];
    }
}

// Inserts the selection's roots, or one item that holds them all when there are many.
- (void)dvInsertSelectionRoots {
    if (!dv->root || rootMenuSelectionCount <= dv->rootMenuCollapseThreshold) {
        [self insertItems:dv->root forMenu:_proxyMenu];
        return;
    }
    NSString* title = [NSString stringWithFormat:@"%d selected items", rootMenuSelectionCount];
    DVMenuItem* item = [DVMenuItem createAutoreleasedItemForTree:dv->root
                                                          target:self
                                                       withTitle:title
                                                    andModifiers:0
                                                        useImage:NO];
    DVMenu* menu = [self createSubmenuForTree:dv->root andItem:item atLevel:0];
    // The submenu lists the roots themselves, not the level of the first root.
    [menu setDvDidPopulate:YES];
    [self addItem:item toMenu:_proxyMenu];
    [self insertItems:dv->root forMenu:menu];
}

- (void)dvAddFinderItem {
    NSMenuItem* item = [self dvPlainItemWithTitle:@"Finder" enabled:YES];
    [_proxyMenu setSubmenu:_finderMenu forItem:item];
    [self addItem:item toMenu:_proxyMenu];
}

- (void)menuWillOpen:(NSMenu*)menu {
    if (menu == _finderMenu && previousDelegate) {
        const BOOL responds = [previousDelegate respondsToSelector:_cmd];
        if (dvEnableDebugOutput) dvdprintf("Delvio: Forward menuWillOpen: %d\n", responds);
        if (responds) [previousDelegate menuWillOpen:menu];
    }
    if (![menu isKindOfClass:[DVMenu class]]) return;
    DVMenu* level = static_cast<DVMenu*>(menu);
    if ([level dvIsPreviewMenu]) return [self dvPopulatePreviewMenu:level];
    if ([level dvNeedsOpenWithHead]) [self dvAddOpenWithHeadToMenu:level];
    [self populateMenu:level];
}

- (void)populateMenu:(DVMenu*)menu {
    dv_tree_t* elem = [menu tree];
    if (!elem) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: No tree associated with menu %p\n", menu);
        return;
    }
    if (dvEnableDebugOutput) dvdprintf("Delvio: Building new level: %p %p\n", menu, elem);
    [self populateSubFolderForElem:elem];
    dv_tree_t* target = [self dvMoveCopyElemForElem:elem];
    if (elem->children) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Populating menu with %p; already populated? %d\n", elem->children,
                      [menu dvDidPopulate]);
        }
        if (![menu dvDidPopulate]) {
            [self insertItems:elem->children forMenu:menu withMoveCopyElem:target];
        }
    } else if (![menu dvDidPopulate]) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: Folder is empty\n");
        [self insertMoveCopyElem:target forMenu:menu];
        [self addItem:[self createAutoreleasedEmptyFolderItem] toMenu:menu];
    }
    [menu setDvDidPopulate:YES];
    if (dvEnableDebugOutput) dvdprintf("Delvio: Level built: %p %p\n", menu, elem);
}

- (void)populateSubFolderForElem:(dv_tree_t*)elem {
    if (elem->children) return;
    char* path = dv_path_for_elem(elem, 1, 0);
    if (!path) return;
    uint32_t flags = dv_get_flags(dv);
    if (elem->origin & DV_ORIGIN_MOVE_COPY) flags |= DV_SCAN_FOLDERS_ONLY;
    dv_read_children(elem, path, 0, 1, flags, elem->origin);
    free(path);
}

- (DVMenu*)createSubmenuForTree:(dv_tree_t*)tree
                        andItem:(NSMenuItem*)item
                        atLevel:(int32_t)level
                     parentMenu:(NSMenu*)parentMenu {
    DVMenu* menu = [[DVMenu alloc] initWithTitle:@"" tree:tree andLevel:level];
    [menu setDelegate:self];
    [item setSubmenu:menu];
    if ([parentMenu isKindOfClass:[DVMenu class]]) {
        DVMenu* parent = static_cast<DVMenu*>(parentMenu);
        [menu setDvOpenWithIsAttachedToRoot:[parent dvOpenWithIsAttachedToRoot]];
    }
    return [menu autorelease];
}

- (DVMenu*)createSubmenuForTree:(dv_tree_t*)tree andItem:(NSMenuItem*)item atLevel:(int32_t)level {
    return [self createSubmenuForTree:tree andItem:item atLevel:level parentMenu:nil];
}

- (DVMenu*)createRecentSubmenuForTree:(dv_tree_t*)tree
                              andItem:(NSMenuItem*)item
                              atLevel:(int32_t)level {
    dv_tree_t* recent = [self getRecentItemsForElem:tree];
    if (!recent) return nil;
    dv_tree_t* copy = dv_copy_elem(tree);
    if (!copy) {
        dv_free_tree(recent);
        return nil;
    }
    copy->children = recent;
    for (dv_tree_t* child = recent; child; child = child->next) child->parent = copy;
    copy->next = dv->copies;
    dv->copies = copy;
    return [self createSubmenuForTree:copy andItem:item atLevel:level];
}

- (NSMenuItem*)createAutoreleasedEmptyFolderItem {
    return [self dvPlainItemWithTitle:@"Folder is empty" enabled:NO];
}

+ (NSString*)stringPathForTree:(dv_tree_t*)tree {
    char* path = dv_path_for_elem(tree, 0, 0);
    if (!path) return nil;
    NSString* string = [NSString stringWithUTF8String:path];
    free(path);
    return string;
}

+ (NSURL*)urlForTree:(dv_tree_t*)tree {
    NSString* path = [self stringPathForTree:tree];
    return path ? [NSURL fileURLWithPath:path] : nil;
}

@end
