// Replacements for the toolkit's popup methods. Each takes over the menu, calls the toolkit's
// method through the replacement's selector, and releases the menu when it has closed. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <stdint.h>

struct AEDesc;

// Non-zero while a menu that was taken over is tracking. A popup inside it is shown unchanged.
extern uint8_t dvIsActive;

@interface NSMenu (DVDelvioAdditions)
- (void)dvInstancePopUpContextMenu:(NSMenu*)menu
                         withEvent:(NSEvent*)event
                           forView:(NSView*)view
                          withFont:(NSFont*)font;
// Present, but not installed.
- (void)dvInstancePopUpContextMenu:(NSMenu*)menu withEvent:(NSEvent*)event forView:(NSView*)view;
+ (void)dvClassPopUpContextMenu:(NSMenu*)menu
                      withEvent:(NSEvent*)event
                        forView:(NSView*)view
                       withFont:(NSFont*)font;
+ (void)dvClassPopUpContextMenu:(NSMenu*)menu withEvent:(NSEvent*)event forView:(NSView*)view;
// Does not call the original: the host's descriptor-based menu plug-ins get no descriptor.
- (void)dvSetContextMenuPluginAEDesc:(const AEDesc*)descriptor;
@end
