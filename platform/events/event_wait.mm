#include "events/event_wait.h"

#include <AppKit/AppKit.h>
#include <GNUstepGUI/GSDisplayServer.h>
#include <host/process.h>
#include <objc/runtime.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "events/deadline.h"

void wake_main_loop() {
    [NSApp postEvent:[NSEvent otherEventWithType:NSApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0]
             atStart:NO];
}

namespace {

// The sleeper that the run loop serves now. A timer may start another one inside it.
EventWait* sleeper;

// GNUstep can answer this only by running the run loop, so the queue itself is looked at.
bool an_event_is_queued() {
    GSDisplayServer* server = GSCurrentServer();
    Ivar variable = server ? class_getInstanceVariable([server class], "event_queue") : nullptr;
    return variable && [static_cast<NSArray*>(object_getIvar(server, variable)) count] > 0;
}

}  // namespace

// GNUstep's run loop polls again and again until a descriptor is readable or the time is over, even
// when it has read events or fired timers in between. It asks each watcher before it polls; this
// watcher then makes its own descriptor readable, which ends the loop.
@interface EventBell : NSObject <RunLoopEvents> {
  @private
    EventWait* _wait;
    int _descriptor;
    NSString* _mode;
}
- (instancetype)initWithWait:(EventWait*)wait mode:(NSString*)mode;
- (void)ring;
// Must be sent before the last release.
- (void)stop;
@end

@implementation EventBell

- (instancetype)initWithWait:(EventWait*)wait mode:(NSString*)mode {
    if (!(self = [super init])) return nil;
    _wait = wait;
    _descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    _mode = [mode retain];
    [[NSRunLoop currentRunLoop] addEvent:reinterpret_cast<void*>(intptr_t{_descriptor})
                                    type:ET_RDESC
                                 watcher:self
                                 forMode:_mode];
    return self;
}

- (void)stop {
    [[NSRunLoop currentRunLoop] removeEvent:reinterpret_cast<void*>(intptr_t{_descriptor})
                                       type:ET_RDESC
                                    forMode:_mode
                                        all:YES];
    close(_descriptor);
}

- (void)dealloc {
    [_mode release];
    [super dealloc];
}

- (void)ring {
    eventfd_write(_descriptor, 1);
}

- (BOOL)runLoopShouldBlock:(BOOL*)trigger {
    *trigger = NO;
    if (sleeper == _wait) _wait->about_to_poll();
    return YES;
}

- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode {
    (void)data, (void)type, (void)extra, (void)mode;
    eventfd_t count;
    eventfd_read(_descriptor, &count);
}

@end

EventWait::EventWait(NSString* mode)
    : mode_([mode retain]), bell_([[EventBell alloc] initWithWait:this mode:mode]) {}

EventWait::~EventWait() {
    [bell_ stop];
    [bell_ release];
    [mode_ release];
}

void EventWait::sleep(double due, const SharedQuestion& has_work) {
    // The run loop cuts its time-outs to whole milliseconds. One more millisecond keeps it from
    // being early.
    NSDate* limit = due > 0 ? [NSDate dateWithTimeIntervalSinceNow:due - seconds_now() + 0.001]
                            : [NSDate distantFuture];
    has_work_ = &has_work;
    polls_ = 0;
    began_ = seconds_now();
    outer_ = sleeper;
    sleeper = this;
    @try {
        [[NSRunLoop currentRunLoop] acceptInputForMode:mode_ beforeDate:limit];
    } @finally {
        sleeper = outer_;
    }
}

// At the first call the run loop has just begun, and may sleep when nothing waits. Before each
// further call it has polled in vain: it has read events, or a timer is due or has fired.
void EventWait::about_to_poll() {
    const bool is_first = polls_++ == 0;
    const bool is_idle = !an_event_is_queued() && !(*has_work_)();
    if (is_first && is_idle) return;
    // The run loop polls without a pause in the last part of a millisecond before a timer.
    if (is_idle && seconds_now() - began_ < 0.001) usleep(1000);
    [bell_ ring];
}
