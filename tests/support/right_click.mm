#include "support/right_click.h"

namespace test {

NSEvent* right_click(NSPoint at) {
    return [NSEvent mouseEventWithType:NSRightMouseDown
                              location:at
                         modifierFlags:0
                             timestamp:0
                          windowNumber:0
                               context:nil
                           eventNumber:0
                            clickCount:1
                              pressure:1];
}

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
