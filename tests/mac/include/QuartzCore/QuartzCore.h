#pragma once

#include <Foundation/Foundation.h>

extern "C" {
extern NSString* const kCATransitionFade;
extern NSString* const kCATransitionFromLeft;
}

@protocol CAMediaTiming
@property double duration;
@end

@interface CAAnimation : NSObject <NSCoding, NSCopying, CAMediaTiming> {
  @private
    void* _attr;
    unsigned int _flags;
}
+ (id)animation;
@end

@interface CATransition : CAAnimation
@property (copy) NSString* type;
@property (copy) NSString* subtype;
@end
