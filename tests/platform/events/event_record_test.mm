#include <AppKit/AppKit.h>
#include <CoreGraphics/CGEvent.h>
#include <gtest/gtest.h>

#include "support/app.h"

namespace {

class Events : public testing::Test {
  protected:
    Events() : pool_([NSAutoreleasePool new]) { test::start_application(); }
    ~Events() override { [pool_ release]; }
    static double height() { return NSHeight([[[NSScreen screens] objectAtIndex:0] frame]); }

    NSAutoreleasePool* pool_;
};

}  // namespace

TEST_F(Events, OneWithoutATypeSaysNothing) {
    CGEventRef event = CGEventCreate(nullptr);
    EXPECT_EQ(CGEventGetType(event), kCGEventNull);
    EXPECT_EQ([NSEvent eventWithCGEvent:event], nil);
    CFRelease(event);
}

TEST_F(Events, AMouseEventIsWhereItWasMade) {
    CGEventRef event = CGEventCreateMouseEvent(nullptr, kCGEventLeftMouseDown,
                                               CGPointMake(100, 120), kCGMouseButtonLeft);
    EXPECT_EQ(CGEventGetType(event), kCGEventLeftMouseDown);
    EXPECT_EQ(CGEventGetLocation(event).x, 100);
    EXPECT_EQ(CGEventGetLocation(event).y, 120);
    EXPECT_EQ(CGEventGetUnflippedLocation(event).x, 100);
    EXPECT_EQ(CGEventGetUnflippedLocation(event).y, height() - 120);
    CFRelease(event);
}

TEST_F(Events, AsAnApplicationsEventItIsOnTheScreen) {
    CGEventRef event = CGEventCreateMouseEvent(nullptr, kCGEventLeftMouseDown,
                                               CGPointMake(100, 120), kCGMouseButtonLeft);
    NSEvent* made = [NSEvent eventWithCGEvent:event];
    CFRelease(event);
    EXPECT_EQ([made type], (NSEventType)NSLeftMouseDown);
    EXPECT_EQ([made window], nil);
    EXPECT_EQ([made locationInWindow].x, 100);
    EXPECT_EQ([made locationInWindow].y, height() - 120);
}

TEST_F(Events, NoEventHasNoTypeAndNoPlace) {
    EXPECT_EQ(CGEventGetType(nullptr), kCGEventNull);
    EXPECT_EQ(CGEventGetLocation(nullptr).x, 0);
}
