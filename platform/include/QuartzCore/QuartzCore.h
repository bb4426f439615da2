// Core Animation, as far as Delvio uses it: how a view's subviews change. Main thread.
#pragma once

#include <AppKit/AppKit.h>

extern NSString* const kCATransitionFade;
extern NSString* const kCATransitionFromLeft;

// What a transition looks like. The views' animators read it, see NSView's -animator.
@interface CATransition : NSObject {
  @private
    NSString* _type;
    NSString* _subtype;
    double _duration;
}
// Autoreleased: a fade of 0.25 seconds.
+ (instancetype)animation;
@property (copy, nonatomic) NSString* type;
// The direction of transitions that move; a fade has none.
@property (copy, nonatomic) NSString* subtype;
@property (assign, nonatomic) double duration;  // in seconds
@end
