// The controller as menu delegate, in front of the host's own delegate.
#pragma once

#include "controller/DVDelvio.h"

// Calls about the host's menu go on to the host's delegate when it answers them; all others get the
// toolkit's neutral answer. menuWillOpen: is the population's.
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
// The host's delegate hears of the plug-in's items only.
- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item;

// The one door for items: at the top of the proxy menu, after those already put there, or at the
// end of any other menu.
- (void)addItem:(NSMenuItem*)item toMenu:(NSMenu*)menu;
@end
