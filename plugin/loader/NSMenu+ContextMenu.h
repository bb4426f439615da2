// Replacements for methods of the host's contextual-menu class. They are safe for any menu. Main
// thread.
#pragma once

#include <AppKit/AppKit.h>

struct TFENodeVector;

@interface NSMenu (DVDelvioAdditionsToTContextMenu)
// Reads the selection from the host's nodes.
- (void)dvConfigureWithNodes:(const TFENodeVector*)nodes
            windowController:(id)window_controller
                   container:(BOOL)container;
// Removes the plug-in's items before the host clears its menu, and puts them back afterwards.
- (void)dvRemoveAllItems;
@end
