// The controller as menu delegate, in front of the host's own delegate.
#pragma once

#include "controller/DVDelvio.h"

// Calls about the host's menu are forwarded to the host's delegate if it implements them; all
// others get the toolkit's neutral answer. menuWillOpen: is in the population category.
@interface DVDelvio (MenuDelegateProxy)
- (NSInteger)numberOfItemsInMenu:(NSMenu*)menu;
- (void)menuNeedsUpdate:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
- (BOOL)menu:(NSMenu*)menu
      updateItem:(NSMenuItem*)item
         atIndex:(NSInteger)index
    shouldCancel:(BOOL)shouldCancel;
- (BOOL)menuHasKeyEquivalent:(NSMenu*)menu
                    forEvent:(NSEvent*)event
                      target:(id*)target
                      action:(SEL*)action;
// The host's delegate is told about the plug-in's items only.
- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item;

// All items are added through this method. It adds to the top of the proxy menu, below the items
// already added there, or to the end of any other menu.
- (void)addItem:(NSMenuItem*)item toMenu:(NSMenu*)menu;
@end
