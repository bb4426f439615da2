#include "items/disc_parts.h"

#include "items/DVCircularProgressView.h"

namespace {

constexpr CGFloat view_side = 32, disc_side = 16;
constexpr NSTimeInterval redraw_interval = 1.0 / 30;

}  // namespace

// A timer retains its target, so an item with a turning disc would never be freed.
@interface DVDiscTurner : NSObject {
  @private
    id<DVProgressUpdating> _target;  // not retained
}
- (instancetype)initWithTarget:(id<DVProgressUpdating>)target;
- (void)turn:(NSTimer*)timer;
@end

@implementation DVDiscTurner

- (instancetype)initWithTarget:(id<DVProgressUpdating>)target {
    if (!(self = [super init])) return nil;
    _target = target;
    return self;
}

- (void)turn:(NSTimer*)timer {
    [_target updateProgress:timer];
}

@end

NSView* create_disc_view(DVCircularProgressView** disc) {
    const CGFloat origin = (view_side - disc_side) / 2;
    NSView* view = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, view_side, view_side)];
    *disc = [[DVCircularProgressView alloc]
        initWithFrame:NSMakeRect(origin, origin, disc_side, disc_side)];
    [view addSubview:*disc];
    return view;
}

NSTimer* start_disc_timer(id<DVProgressUpdating> target) {
    DVDiscTurner* turner = [[[DVDiscTurner alloc] initWithTarget:target] autorelease];
    NSTimer* timer = [NSTimer timerWithTimeInterval:redraw_interval
                                             target:turner
                                           selector:@selector(turn:)
                                           userInfo:nil
                                            repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSEventTrackingRunLoopMode];
    return timer;
}
