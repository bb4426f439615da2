#include "support/turn.h"

#import <Foundation/Foundation.h>

void test::in_one_turn(const std::function<void()>& action) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    action();
    [pool release];
}
