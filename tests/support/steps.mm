#include "support/steps.h"

#include <AppKit/AppKit.h>
#include <GNUstepGUI/GSDisplayServer.h>
#include <host/menu_tracking.h>
#include <host/process.h>
#include <gtest/gtest.h>

#include "support/right_click.h"

#include <X11/Xlib.h>  // its macros would break the test library's headers

namespace {

// How long a step may wait before the test fails. This is a guard, not a measure of speed.
const NSTimeInterval patience = 60;

// The hand has a connection of its own: a window that the program has only asked for would not be
// there yet for a click.
void send_requests() {
    GSDisplayServer* server = GSCurrentServer();
    if (void* display = server ? [server serverDevice] : nullptr) {
        XFlush(static_cast<Display*>(display));
    }
}

}  // namespace

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
    _steps->turn();
}
@end

namespace test {

Steps& Steps::when(const std::string& what, Condition condition, Action action) {
    steps_.push_back({what, std::move(condition), std::move(action)});
    return *this;
}

void Steps::turn() {
    if (failed_) {
        [[MenuSession current] cancel];
        end_modal_session();
        return;
    }
    if (!is_done() && steps_[next_].condition()) {
        waiting_since_ = 0;
        send_requests();
        steps_[next_++].action();
        return;
    }
    const NSTimeInterval now = [NSDate timeIntervalSinceReferenceDate];
    if (waiting_since_ == 0) waiting_since_ = now;
    if (now - waiting_since_ <= patience) return;
    failed_ = true;
    ADD_FAILURE() << "waited in vain for: " << (is_done() ? "the end" : steps_[next_].what);
}

void Steps::run_beside(const Action& tracking) {
    StepsTimer* target = [[[StepsTimer alloc] initWithSteps:this] autorelease];
    NSTimer* timer = while_tracking(0.005, target, @selector(fire:), YES);
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSDefaultRunLoopMode];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSModalPanelRunLoopMode];
    @try {
        tracking();
    } @finally {
        [timer invalidate];
    }
    if (!is_done() && !failed_) ADD_FAILURE() << "never came to: " << steps_[next_].what;
}

void Steps::run() {
    run_beside([this] { dispatch_events(); });
}

void Steps::dispatch_events() {
    while (!is_done() && !(failed_ && ![MenuSession current])) {
        @autoreleasepool {
            NSEvent* event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                                untilDate:[NSDate dateWithTimeIntervalSinceNow:0.02]
                                                   inMode:NSDefaultRunLoopMode
                                                  dequeue:YES];
            if (event) [NSApp sendEvent:event];
        }
    }
}

}  // namespace test
