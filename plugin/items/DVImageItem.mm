#include "items/DVImageItem.h"

#include "items/DVCircularProgressView.h"

@implementation DVImageItem

- (instancetype)initWithTree:(dv_tree_t*)tree target:(id)target {
    self = [super initWithTree:tree target:target title:@"" useImage:NO];
    if (!self) return nil;
    view = create_disc_view(&progress);
    hasImage = NO;
    [self setView:view];
    theTimer = start_disc_timer(self);
    return self;
}

- (void)dealloc {
    [theTimer invalidate];
    theTimer = nil;
    [progress removeFromSuperview];
    [view removeFromSuperview];
    [progress release];
    [view release];
    [super dealloc];
}

- (void)setImage:(NSImage*)image {
    if (image) {
        [self setView:nil];
        [theTimer invalidate];
        theTimer = nil;
    } else {
        [self setView:view];
    }
    [super setImage:image];
}

- (void)updateProgress:(NSTimer*)timer {
    (void)timer;
    [progress setNeedsDisplay:YES];
}

@end
