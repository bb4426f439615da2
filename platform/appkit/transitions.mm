#include <QuartzCore/QuartzCore.h>

NSString* const kCATransitionFade = @"fade";
NSString* const kCATransitionFromLeft = @"fromLeft";

@implementation CATransition
@synthesize type = _type;
@synthesize subtype = _subtype;
@synthesize duration = _duration;

+ (instancetype)animation {
    CATransition* transition = [[[self alloc] init] autorelease];
    [transition setType:kCATransitionFade];
    [transition setDuration:0.25];
    return transition;
}

- (void)dealloc {
    [_type release];
    [_subtype release];
    [super dealloc];
}

@end
