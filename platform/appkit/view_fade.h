// A fade from what a view shows to what it shows next. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Lies over the view while it fades, and lets everything through.
@interface ViewFade : NSView {
  @private
    struct _cairo_surface* _before;  // owned
    NSTimeInterval _begun, _duration;
    NSTimer* _timer;
}
// A picture of the view as it is now, for a change that its animations ("subviews") want faded; nil
// when they do not, or the view cannot be seen. Autoreleased.
+ (instancetype)fadeOfView:(NSView*)view;
// Fades from the picture; sent after the change.
- (void)start;
@end
