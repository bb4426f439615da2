// What runs in place of the toolkit's popup methods: each takes the menu over, hands on to the
// toolkit by its own selector, and releases the menu when it has closed. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <stdint.h>

struct AEDesc;

// A menu that has been taken over is being tracked: a popup within it is shown as it is.
extern uint8_t dvIsActive;

@interface NSMenu (DVDelvioAdditions)
- (void)dvInstancePopUpContextMenu:(NSMenu*)menu
                         withEvent:(NSEvent*)event
                           forView:(NSView*)view
                          withFont:(NSFont*)font;
// Present, not installed.
- (void)dvInstancePopUpContextMenu:(NSMenu*)menu withEvent:(NSEvent*)event forView:(NSView*)view;
+ (void)dvClassPopUpContextMenu:(NSMenu*)menu
                      withEvent:(NSEvent*)event
                        forView:(NSView*)view
                       withFont:(NSFont*)font;
+ (void)dvClassPopUpContextMenu:(NSMenu*)menu withEvent:(NSEvent*)event forView:(NSView*)view;
// Does not hand on: the host's descriptor-based menu plug-ins get none.
- (void)dvSetContextMenuPluginAEDesc:(const AEDesc*)descriptor;
@end
