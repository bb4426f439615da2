#include "items/DVProgressItem.h"

#include "items/DVCircularProgressView.h"

@implementation DVProgressItem

- (instancetype)initWithTree:(dv_tree_t*)tree target:(id)target {
    self = [super initWithTree:tree target:target title:@"" useImage:NO];
    if (!self) return nil;
    view = create_disc_view(&progress);
    [self setView:view];
    [self start];
    return self;
}

- (void)dealloc {
    [self stop];
    [progress release];
    [view release];
    [self setView:nil];
    [super dealloc];
}

- (void)setImage:(NSImage*)image {
    if (image) {
        [self setView:nil];
        [self stop];
    } else {
        [self setView:view];
        [self start];
    }
    [super setImage:image];
}

- (void)start {
    if (!theTimer) theTimer = start_disc_timer(self);
}

- (void)stop {
    [theTimer invalidate];
    theTimer = nil;
}

- (void)updateProgress:(NSTimer*)timer {
    (void)timer;
    [progress setNeedsDisplay:YES];
}

@end
