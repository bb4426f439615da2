#include "loader/method_swizzle.h"

#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <string>

#include "loader/event_hooks.h"
#include "support/app.h"

@interface SwizzleBase : NSObject
- (int)plain;
- (int)inherited;
+ (int)shared;
+ (int)sharedOther;
@end

@interface SwizzleChild : SwizzleBase
- (int)own;
- (int)other;
@end

@implementation SwizzleBase
- (int)plain {
    return 1;
}
- (int)inherited {
    return 2;
}
+ (int)shared {
    return 3;
}
+ (int)sharedOther {
    return 4;
}
@end

@implementation SwizzleChild
- (int)own {
    return 5;
}
- (int)other {
    return 6;
}
@end

namespace {

class Swizzle : public testing::Test {
  protected:
    Swizzle() : pool_([NSAutoreleasePool new]), child_([[SwizzleChild new] autorelease]) {}
    ~Swizzle() override { [pool_ release]; }

    NSAutoreleasePool* pool_;
    SwizzleChild* child_;
};

}  // namespace

TEST_F(Swizzle, InstanceMethodsChangePlaces) {
    MethodSwizzle([SwizzleChild class], @selector(own), @selector(other), 1);
    EXPECT_EQ([child_ own], 6);
    EXPECT_EQ([child_ other], 5);
    MethodSwizzle([SwizzleChild class], @selector(own), @selector(other), 1);
    EXPECT_EQ([child_ own], 5);
}

TEST_F(Swizzle, ClassMethodsChangePlaces) {
    MethodSwizzle([SwizzleBase class], @selector(shared), @selector(sharedOther), 0);
    EXPECT_EQ([SwizzleBase shared], 4);
    EXPECT_EQ([SwizzleBase sharedOther], 3);
    EXPECT_EQ([SwizzleChild shared], 4);
}

TEST_F(Swizzle, AMethodOfASuperclassIsFound) {
    MethodSwizzle([SwizzleChild class], @selector(other), @selector(inherited), 1);
    EXPECT_EQ([child_ other], 2);
    EXPECT_EQ([child_ inherited], 6);
    MethodSwizzle([SwizzleChild class], @selector(other), @selector(inherited), 1);
}

TEST_F(Swizzle, AMissingMethodOrClassExchangesNothing) {
    MethodSwizzle([SwizzleChild class], @selector(own), @selector(dvNoSuchMethod), 1);
    MethodSwizzle([SwizzleChild class], @selector(dvNoSuchMethod), @selector(own), 1);
    MethodSwizzle([SwizzleChild class], @selector(own), @selector(other), 0);
    MethodSwizzle(nullptr, @selector(own), @selector(other), 1);
    EXPECT_EQ([child_ own], 5);
    EXPECT_EQ([child_ other], 6);
}

TEST_F(Swizzle, TheEventHooksPrintAndHandOn) {
    test::start_application();
    NSEvent* event = [NSEvent otherEventWithType:NSApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:77
                                           data1:0
                                           data2:0];
    MethodSwizzle([NSApplication class], @selector(sendEvent:), @selector(dvSendEvent:), 1);
    testing::internal::CaptureStdout();
    [NSApp sendEvent:event];
    const std::string printed = testing::internal::GetCapturedStdout();
    MethodSwizzle([NSApplication class], @selector(sendEvent:), @selector(dvSendEvent:), 1);
    EXPECT_EQ(printed, std::string("Event: ") + [[event description] UTF8String] + "\n");
}
