// A window that asks or tells something: its title says what, and the window manager can close it,
// but neither hide nor resize it. Main thread.
#pragma once

#include <AppKit/AppKit.h>

@interface DialogPanel : NSPanel
// The view is the whole content, draws in pixels, and gets the keys. Control characters of the
// title are shown as signs.
- (instancetype)initWithView:(NSView*)view title:(NSString*)title;
// In the middle of the pointer's screen, before the other windows; leaves the keyboard where it is.
- (void)show;
// The same with the keyboard, until somebody stops the modal session; returns with what.
- (NSInteger)runModal;
// Somebody wants to be rid of the window: the close button or Escape. A subclass gives its harmless
// answer; here nothing happens.
- (void)cancelDialog;
@end
