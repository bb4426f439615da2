// A fade from what a view shows to what it shows next. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Lies over the view while it fades, and lets clicks through to it.
@interface ViewFade : NSView {
  @private
    struct _cairo_surface* _before;  // owned
    NSTimeInterval _begun, _duration;
    NSTimer* _timer;
}
// Takes a picture of the view, before a change that the view's animations ("subviews") want faded.
// Nil when they do not, or when the view cannot be seen. Autoreleased.
+ (instancetype)fadeOfView:(NSView*)view;
// Starts the fade from the picture. Sent after the change.
- (void)start;
// Shows the new content at once.
- (void)end;
@end
