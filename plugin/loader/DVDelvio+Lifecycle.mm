#include "menus/DVDelvio+Proxy.h"

#include "input/DVDelvio+Dragging.h"
#include "menus/DVDelvio+Population.h"
#include "menus/DVDelvio+Roots.h"
#include "menus/DVDelvio+Selection.h"
#include "preview/DVPreviewWindowController.h"
#include "support/dv_log.h"
#include "tree/dv_prefs.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

// Every chain in the record, in the order in which they are freed.
void free_trees(delvio_t* dv) {
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Free'ing trees; root = %p, forest = %p open_with = %p, move_copy = %p, "
                  "running_apps = %p\n",
                  dv->root, dv->forest, dv->open_with, dv->copies, dv->running_apps);
    }
    dv_tree_t** const slots[] = {&dv->root,      &dv->custom, &dv->forest,
                                 &dv->open_with, &dv->copies, &dv->running_apps};
    for (dv_tree_t** slot : slots) {
        dv_free_tree(*slot);
        *slot = nullptr;
    }
}

}  // namespace

@implementation DVDelvio (MenuLifecycle)

- (NSMenu*)setCurrentMenu:(NSMenu*)menu withProxyDelegate:(id)delegate {
    return [self setCurrentMenu:menu withProxyDelegate:delegate withClass:[menu class]];
}

// The delegate to forward to is read from the menu, not taken from the caller.
- (NSMenu*)setCurrentMenu:(NSMenu*)menu withProxyDelegate:(id)delegate withClass:(Class)menuClass {
    (void)delegate;
    dv_read_prefs(dv, 0);
    if (!dv->delvio_is_on) return menu;
    // Shift asks for the host's plain menu.
    if ([NSEvent modifierFlags] & NSShiftKeyMask) return menu;

    [self enableEventTap:nil];
    isInvoked = YES;
    pthread_mutex_lock(&treeLock);
    @try {
        [self dvTakeMenu:menu ofClass:menuClass];
    } @finally {
        pthread_mutex_unlock(&treeLock);
    }
    [self forceFinderMenuUpdate:self];
    return _proxyMenu;
}

- (void)dvTakeMenu:(NSMenu*)menu ofClass:(Class)menuClass {
    // The count goes up first: the release after an exception takes it down again.
    dv->count++;
    [self dvHoldMenu:menu ofClass:menuClass];
    rootMenuSelectionCount = 0;
    dv->forest = dv_add_to_forest(&dv->root, dv->forest, dv->count);
    dv->forest = dv_add_to_forest(&dv->custom, dv->forest, dv->count);
    dvFontSize = dv->font_size;
    dv->multiple_selection = 0;
    [self createUserTrees];
    [self updateProxyMenu];
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Created menu %p for main menu %p\n", _proxyMenu, menu);
    }
}

- (void)dvHoldMenu:(NSMenu*)menu ofClass:(Class)menuClass {
    [menu retain];
    [_finderMenu release];
    [_proxyMenu release];
    _finderMenu = menu;
    _proxyMenu = nil;
    previousDelegate = nil;
    if (dv->finderInSeparateSubmenu) {
        _proxyMenu = [[menuClass alloc] init];
    } else {
        _proxyMenu = [_finderMenu retain];
        previousDelegate = [_finderMenu delegate];
    }
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Sep submenu: %d Delegate: %p\n", dv->finderInSeparateSubmenu,
                  [_finderMenu delegate]);
    }
    [_proxyMenu setDelegate:self];
}

- (void)removeMenuAndDelegate {
    pthread_mutex_lock(&treeLock);
    // An exception from the host's menu reaches the caller, but only after the cleanup below.
    @try {
        [self dvGiveMenuBack];
    } @finally {
        [self dvForgetMenus];
        dvDidGetURLs = 0;
        if (--dv->count < 0) dv->count = 0;
        if (dv->count == 0) {
            if (!dv->file_op_in_progress) free_trees(dv);
            if (dvEnableDebugOutput) {
                dvdprintf("Delvio: Free'ing menus and removing event handlers\n");
            }
        }
        [hoverPreviewTimer invalidate];
        hoverPreviewTimer = nil;
        [previewWindowController hidePreviewWindow:self];
        pthread_mutex_unlock(&treeLock);
        isInvoked = NO;
    }
}

- (void)dvGiveMenuBack {
    id delegate = nil;
    @try {
        if (dv->finderInSeparateSubmenu) {
            [_proxyMenu removeAllItems];
        } else {
            [self removeRootItems];
            delegate = previousDelegate;
        }
    } @finally {
        [_proxyMenu setDelegate:delegate];
    }
}

- (void)dvForgetMenus {
    [rootItems removeAllObjects];
    [_proxyMenu release];
    [_finderMenu release];
    [self disableEventTap:nil];
    previousDelegate = nil;
    _finderMenu = nil;
    _proxyMenu = nil;
}

- (void)removeRootItems {
    @try {
        for (NSMenuItem* item in rootItems) [_proxyMenu removeItem:item];
    } @catch (id exception) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: Caught exception removing root items.\n");
    }
    [rootItems removeAllObjects];
}

- (void)forceFinderMenuUpdate:(id)sender {
    (void)sender;
    id delegate = [_finderMenu delegate];
    if ([delegate respondsToSelector:@selector(menuWillOpen:)]) {
        [delegate menuWillOpen:_finderMenu];
    }
    delegate = [_finderMenu delegate];
    if ([delegate respondsToSelector:@selector(menuNeedsUpdate:)]) {
        [delegate menuNeedsUpdate:_finderMenu];
    }
}

- (void)handleRemoveAllItemsPre:(NSMenu*)menu {
    if (menu == _proxyMenu) [self removeRootItems];
}

- (void)handleRemoveAllItemsPost:(NSMenu*)menu {
    if (!dv->finderInSeparateSubmenu && menu == _proxyMenu) [self updateProxyMenu];
}

@end
