#include "loader/method_swizzle.h"

#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <string>

#include "loader/event_hooks.h"
#include "support/app.h"
#include "support/dv_log.h"

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

@interface EventSource : NSWindow
@end

namespace {

NSEvent* next_event = nil;

NSEvent* event_for_mask(id, SEL, NSUInteger mask) { return mask == 5 ? next_event : nil; }

NSEvent* event_before_date(id, SEL, NSUInteger mask, NSDate* date, NSString* mode, BOOL dequeue) {
    return mask == 5 && !date && [mode isEqualToString:@"mode"] && dequeue ? next_event : nil;
}

}  // namespace

@implementation EventSource
@end

TEST_F(Swizzle, TheWindowsHooksPrintWhatTheyHandOn) {
    test::start_application();
    Class source = [EventSource class];
    const SEL plain = @selector(nextEventMatchingMask:);
    const SEL full = @selector(nextEventMatchingMask:untilDate:inMode:dequeue:);
    class_addMethod(source, plain, reinterpret_cast<IMP>(event_for_mask), "@@:Q");
    class_addMethod(source, full, reinterpret_cast<IMP>(event_before_date), "@@:Q@@c");
    // The class gets its own entries for the hooks, which belong to the superclass.
    for (SEL hook : {
             @selector(dvNextEventMatchingMask:), @selector(dvNextEventMatchingMask:
                                                                          untilDate:inMode:dequeue:)
         }) {
        Method method = class_getInstanceMethod([NSWindow class], hook);
        class_addMethod(source, hook, method_getImplementation(method),
                        method_getTypeEncoding(method));
    }
    MethodSwizzle(source, plain, @selector(dvNextEventMatchingMask:), 1);
    MethodSwizzle(source, full, @selector(dvNextEventMatchingMask:untilDate:inMode:dequeue:), 1);
    next_event = [NSEvent otherEventWithType:NSApplicationDefined
                                    location:NSZeroPoint
                               modifierFlags:0
                                   timestamp:0
                                windowNumber:0
                                     context:nil
                                     subtype:78
                                       data1:0
                                       data2:0];
    EventSource* window = [[EventSource alloc] initWithContentRect:NSMakeRect(0, 0, 10, 10)
                                                         styleMask:NSBorderlessWindowMask
                                                           backing:NSBackingStoreBuffered
                                                             defer:YES];
    testing::internal::CaptureStdout();
    EXPECT_EQ([window nextEventMatchingMask:5], next_event);
    EXPECT_EQ([window nextEventMatchingMask:5 untilDate:nil inMode:@"mode" dequeue:YES],
              next_event);
    const std::string description = [[next_event description] UTF8String];
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Win Event: " + description + "\nEvent: " + description + "\n");
    [window release];
}

TEST_F(Swizzle, EachExchangeIsLoggedAlsoWhenAMethodIsMissing) {
    Class child = [SwizzleChild class];
    Method own = class_getInstanceMethod(child, @selector(own));
    char line[200];
    snprintf(line, sizeof line, "Delvio: Swizzle %p (nil) [%p (nil)] 1\n", own,
             reinterpret_cast<void*>(method_getImplementation(own)));
    dvEnableDebugOutput = 1;
    testing::internal::CaptureStdout();
    MethodSwizzle(child, @selector(own), @selector(dvNoSuchMethod), 1);
    MethodSwizzle(nullptr, @selector(own), @selector(other), 1);
    fflush(stdout);
    dvEnableDebugOutput = 0;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), line);
}
