#include "support/right_click.h"

#include <host/menu_tracking.h>

namespace test {

NSEvent* right_click(NSPoint at) { return right_click_event(at, 0); }

NSTimer* while_tracking(NSTimeInterval interval, id target, SEL action, BOOL repeats) {
    NSTimer* timer = [NSTimer timerWithTimeInterval:interval
                                             target:target
                                           selector:action
                                           userInfo:nil
                                            repeats:repeats];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSEventTrackingRunLoopMode];
    return timer;
}

}  // namespace test
