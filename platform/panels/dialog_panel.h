// A window that asks or tells something. Its title says what. The window manager can close it, but
// can neither hide nor resize it. Main thread.
#pragma once

#include <AppKit/AppKit.h>

@interface DialogPanel : NSPanel
// The view is the whole content, draws in pixels, and gets the keys. Control characters in the
// title are shown as signs.
- (instancetype)initWithView:(NSView*)view title:(NSString*)title;
// Shows the window in front, in the middle of the pointer's screen. The keyboard stays where it is.
- (void)show;
// Shows the window with the keyboard until somebody stops the modal session, and returns the
// session's code.
- (NSInteger)runModal;
// Sent when the user closes the window by its close button or Escape. A subclass gives its harmless
// answer; this class does nothing.
- (void)cancelDialog;
@end
