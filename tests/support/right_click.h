// Opening a menu without a mouse, for tests and measurements. Main thread.
#pragma once

#include <AppKit/AppKit.h>

namespace test {

// The event of a right-click without a window, at a point of the screen from the lower left.
NSEvent* right_click(NSPoint at);

// Sends `action` to `target` while a menu tracks, once or until the timer is invalidated. The
// target is retained.
NSTimer* while_tracking(NSTimeInterval interval, id target, SEL action, BOOL repeats);

}  // namespace test
