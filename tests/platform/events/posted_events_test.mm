// Posted pointer events and cursors of the theme, on a real display.
#include <AppKit/AppKit.h>
#include <Carbon/Appearance.h>
#include <CoreGraphics/CGRemoteOperation.h>
#include <gtest/gtest.h>

#include <pthread.h>

#include <functional>

#include "desktop/window_program.h"
#include "platform/events/pointer_window.h"
#include "support/app.h"
#include "support/steps.h"
#include "support/x_input.h"

namespace {

class PostedEvents : public testing::Test {
  protected:
    PostedEvents() : pool_([NSAutoreleasePool new]) { test::start_application(); }
    ~PostedEvents() override {
        input_.let_go();
        [pool_ release];
    }
    static void until(const char* what, const std::function<bool()>& condition) {
        test::Steps steps;
        steps.when(what, condition);
        steps.run();
    }

    NSAutoreleasePool* pool_;
    test::XInput input_;
};

constexpr boolean_t up = 0, down = 1;

}  // namespace

TEST_F(PostedEvents, ARightClickComesOnceWhereItWasPosted) {
    PointerWindow* window = [[PointerWindow new] autorelease];
    input_.move(10, 10);
    until("the window", [&] { return [[window window] isVisible]; });
    EXPECT_EQ(CGPostMouseEvent(CGPointMake(180, 190), true, 2, up, down), kCGErrorSuccess);
    EXPECT_EQ(CGPostMouseEvent(CGPointMake(180, 190), true, 2, up, up), kCGErrorSuccess);
    until("the click", [&] { return [window log].find("right up") != std::string::npos; });
    EXPECT_EQ([window takeLog], "right down 180 190, right up 180 190");
    EXPECT_EQ([NSEvent pressedMouseButtons], 0u);
}

TEST_F(PostedEvents, WhatDiffersFromTheLastPostIsPressedOrReleased) {
    PointerWindow* window = [[PointerWindow new] autorelease];
    until("the window", [&] { return [[window window] isVisible]; });
    CGPostMouseEvent(CGPointMake(180, 190), true, 1, down);
    EXPECT_EQ([NSEvent pressedMouseButtons], 1u);
    CGPostMouseEvent(CGPointMake(180, 190), true, 2, down, down);
    EXPECT_EQ([NSEvent pressedMouseButtons], 3u);
    CGPostMouseEvent(CGPointMake(180, 190), true, 2, up, up);
    EXPECT_EQ([NSEvent pressedMouseButtons], 0u);
}

TEST_F(PostedEvents, ThePointerStaysWithoutAnUpdate) {
    input_.move(600, 600);
    CGPostMouseEvent(CGPointMake(180, 190), false, 1, up);
    EXPECT_EQ([NSEvent mouseLocation].x, 600);
    CGPostMouseEvent(CGPointMake(180, 190), true, 1, up);
    EXPECT_EQ([NSEvent mouseLocation].x, 180);
}

TEST_F(PostedEvents, TheUsersOwnEventsAreNeverHeldBack) {
    EXPECT_EQ(CGSetLocalEventsSuppressionInterval(0.0), kCGErrorSuccess);
    EXPECT_EQ(CGSetLocalEventsSuppressionInterval(1.0), kCGErrorIllegalArgument);
    EXPECT_EQ(CGSetLocalEventsFilterDuringSuppressionState(7, 0), kCGErrorSuccess);
    EXPECT_EQ(CGSetLocalEventsFilterDuringSuppressionState(7, 1), kCGErrorSuccess);
    EXPECT_EQ(CGSetLocalEventsFilterDuringSuppressionState(7, 2), kCGErrorIllegalArgument);
    EXPECT_EQ(CGSetLocalEventsFilterDuringSuppressionState(1, 0), kCGErrorIllegalArgument);
    EXPECT_EQ(CGEnableEventStateCombining(false), kCGErrorSuccess);
}

TEST_F(PostedEvents, ACursorShowsOverAnotherProgramsWindowUntilThePointerMoves) {
    test::WindowProgram program({"window", "show", "focus"});
    input_.move(30, 30);
    const unsigned long before = input_.cursor();
    const auto shows = [&] { return input_.cursor() != before; };
    input_.press(1);
    EXPECT_EQ(SetThemeCursor(kThemeContextualMenuArrowCursor), noErr);
    EXPECT_TRUE(shows());
    input_.move(31, 30);
    until("the cursor as it was", [&] { return !shows(); });
}

TEST_F(PostedEvents, ACursorThatNobodyAsksForAnyMoreGoes) {
    input_.move(700, 700);
    const unsigned long before = input_.cursor();
    EXPECT_EQ(SetThemeCursor(kThemeContextualMenuArrowCursor), noErr);
    EXPECT_NE(input_.cursor(), before);
    until("the cursor as it was", [&] { return input_.cursor() == before; });
}

TEST_F(PostedEvents, ThereAreFourCursors) {
    EXPECT_EQ(SetThemeCursor(4), paramErr);
    EXPECT_EQ(SetThemeCursor(kThemeAliasArrowCursor), noErr);
}

TEST_F(PostedEvents, APostAndAQuestionMayComeFromAnyThread) {
    input_.move(640, 400);
    struct TapAnswer {
        NSPoint at;
        NSUInteger buttons;
        CGError posted;
    } answer = {};
    pthread_t thread;
    input_.press(1);
    pthread_create(
        &thread, nullptr,
        [](void* memory) -> void* {
            NSAutoreleasePool* pool = [NSAutoreleasePool new];
            auto* answer = static_cast<TapAnswer*>(memory);
            answer->at = [NSEvent mouseLocation];
            answer->buttons = [NSEvent pressedMouseButtons];
            answer->posted = CGPostMouseEvent(CGPointMake(650, 400), true, 1, up);
            [pool release];
            return nullptr;
        },
        &answer);
    pthread_join(thread, nullptr);
    EXPECT_EQ(answer.at.x, 640);
    EXPECT_EQ(answer.buttons, 1u);
    EXPECT_EQ(answer.posted, kCGErrorSuccess);
    EXPECT_EQ([NSEvent mouseLocation].x, 650);
}
