#include "desktop/steps.h"

#include <AppKit/AppKit.h>
#include <AppKit/MenuTracking.h>
#include <gtest/gtest.h>

namespace test {

// How long a step may wait before the test is given up: a guard, not a measure of speed.
const NSTimeInterval patience = 30;

struct StepsAccess {
    static void turn(Steps* steps) { steps->turn(); }
};

}  // namespace test

@interface StepsTimer : NSObject {
  @private
    test::Steps* _steps;
}
- (instancetype)initWithSteps:(test::Steps*)steps;
- (void)fire:(NSTimer*)timer;
@end

@implementation StepsTimer
- (instancetype)initWithSteps:(test::Steps*)steps {
    if ((self = [super init])) _steps = steps;
    return self;
}
- (void)fire:(NSTimer*)timer {
    (void)timer;
    test::StepsAccess::turn(_steps);
}
@end

namespace test {

Steps& Steps::when(const std::string& what, Condition condition, Action action) {
    steps_.push_back({what, std::move(condition), std::move(action)});
    return *this;
}

void Steps::turn() {
    if (next_ >= steps_.size()) return;
    if (failed_) {
        [[MenuSession current] cancel];
        return;
    }
    const NSTimeInterval now = [NSDate timeIntervalSinceReferenceDate];
    if (waiting_since_ == 0) waiting_since_ = now;
    Step& step = steps_[next_];
    if (step.condition()) {
        ++next_;
        waiting_since_ = 0;
        step.action();
    } else if (now - waiting_since_ > patience) {
        failed_ = true;
        ADD_FAILURE() << "waited in vain for: " << step.what;
    }
}

void Steps::run() {
    StepsTimer* target = [[[StepsTimer alloc] initWithSteps:this] autorelease];
    NSTimer* timer = [NSTimer timerWithTimeInterval:0.01
                                             target:target
                                           selector:@selector(fire:)
                                           userInfo:nil
                                            repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSDefaultRunLoopMode];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSEventTrackingRunLoopMode];
    while (next_ < steps_.size() && !(failed_ && ![MenuSession current])) {
        @autoreleasepool {
            NSEvent* event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                                untilDate:[NSDate dateWithTimeIntervalSinceNow:0.02]
                                                   inMode:NSDefaultRunLoopMode
                                                  dequeue:YES];
            if (event) [NSApp sendEvent:event];
        }
    }
    [timer invalidate];
}

}  // namespace test
