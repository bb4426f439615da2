// What runs in place of the methods of the host's own contextual-menu class. Harmless for any menu.
// Main thread.
#pragma once

#include <AppKit/AppKit.h>

struct TFENodeVector;

@interface NSMenu (DVDelvioAdditionsToTContextMenu)
// Learns the selection from the host's nodes.
- (void)dvConfigureWithNodes:(const TFENodeVector*)nodes
            windowController:(id)window_controller
                   container:(BOOL)container;
// Takes the plug-in's items out before the host clears its menu and puts them back after.
- (void)dvRemoveAllItems;
@end
