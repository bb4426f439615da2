#include "menus/DVDelvio+Proxy.h"

#include "items/DVMenuItem.h"
#include "preview/DVDelvio+HoverPreview.h"
#include "preview/DVPreviewWindowController.h"
#include "support/dv_log.h"

@implementation DVDelvio (MenuDelegateProxy)

// This excludes the proxy menu: while the host's items are in a submenu, that submenu keeps its own
// delegate.
- (BOOL)dvForwards:(SEL)selector forMenu:(NSMenu*)menu {
    return menu == _finderMenu && [previousDelegate respondsToSelector:selector];
}

- (NSInteger)numberOfItemsInMenu:(NSMenu*)menu {
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Forward numberOfItemsInMenu: %d\n",
                  [previousDelegate respondsToSelector:_cmd]);
    }
    if (![self dvForwards:_cmd forMenu:menu]) return [menu numberOfItems];
    return [previousDelegate numberOfItemsInMenu:menu];
}

- (void)menuNeedsUpdate:(NSMenu*)menu {
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Forward menuNeedsUpdate: %d\n",
                  [previousDelegate respondsToSelector:_cmd]);
    }
    if ([self dvForwards:_cmd forMenu:menu]) [previousDelegate menuNeedsUpdate:menu];
}

- (void)menuDidClose:(NSMenu*)menu {
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Forward menuDidClose: %d\n", [previousDelegate respondsToSelector:_cmd]);
    }
    if ([self dvForwards:_cmd forMenu:menu]) [previousDelegate menuDidClose:menu];
}

- (BOOL)menu:(NSMenu*)menu
      updateItem:(NSMenuItem*)item
         atIndex:(NSInteger)index
    shouldCancel:(BOOL)shouldCancel {
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Forward menu:updateItem:atIndex:shouldCancel: %d\n",
                  [previousDelegate respondsToSelector:_cmd]);
    }
    if (![self dvForwards:_cmd forMenu:menu]) return YES;
    return [previousDelegate menu:menu updateItem:item atIndex:index shouldCancel:shouldCancel];
}

- (BOOL)menuHasKeyEquivalent:(NSMenu*)menu
                    forEvent:(NSEvent*)event
                      target:(id*)target
                      action:(SEL*)action {
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Forward menuHasKeyEquivalent:forEvent:target:action: %d\n",
                  [previousDelegate respondsToSelector:_cmd]);
    }
    if (![self dvForwards:_cmd forMenu:menu]) return NO;
    return [previousDelegate menuHasKeyEquivalent:menu forEvent:event target:target action:action];
}

- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item {
    if (dvEnableDebugOutput) dvdprintf("Delvio: Highlight: %p item: %p\n", menu, item);
    if (![item isKindOfClass:[DVMenuItem class]]) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: No item. Hiding preview..\n");
        _currentlyHighlightedItem = nil;
        [previewWindowController hidePreviewWindow:self];
        return;
    }
    _currentlyHighlightedItem = static_cast<DVMenuItem*>(item);
    [self updatePreview];
    const BOOL responds = [previousDelegate respondsToSelector:_cmd];
    if (dvEnableDebugOutput) dvdprintf("Delvio: Forward menu:willHighlightItem: %d\n", responds);
    if (responds) [previousDelegate menu:menu willHighlightItem:item];
}

- (void)addItem:(NSMenuItem*)item toMenu:(NSMenu*)menu {
    if (menu == _proxyMenu) {
        [rootItems addObject:item];
        [menu insertItem:item atIndex:[rootItems count] - 1];
    } else {
        [menu addItem:item];
    }
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Add item '%s' to menu %p [root = %p]\n", [[item title] UTF8String], menu,
                  _proxyMenu);
    }
}

@end
