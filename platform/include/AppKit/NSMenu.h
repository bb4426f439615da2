// Menus: GNUstep's, and the Mac's protocol for their delegates.
#pragma once

#include_next <AppKit/NSMenu.h>

@class NSEvent;

// What a menu asks and tells its delegate; the contextual-menu presenter sends it here. GNUstep's
// protocol of this name requires every method.
@protocol MacMenuDelegate <NSObject>
@optional
- (void)menuNeedsUpdate:(NSMenu*)menu;
- (NSInteger)numberOfItemsInMenu:(NSMenu*)menu;
- (BOOL)menu:(NSMenu*)menu
      updateItem:(NSMenuItem*)item
         atIndex:(NSInteger)index
    shouldCancel:(BOOL)shouldCancel;
- (BOOL)menuHasKeyEquivalent:(NSMenu*)menu
                    forEvent:(NSEvent*)event
                      target:(id*)target
                      action:(SEL*)action;
- (void)menuWillOpen:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item;
@end
#define NSMenuDelegate MacMenuDelegate
