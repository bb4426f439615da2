// The session's view of the buttons, with a real pointer.
#include <AppKit/AppKit.h>
#include <CoreGraphics/CGEvent.h>
#include <gtest/gtest.h>

#include "desktop/window_program.h"
#include "platform/events/pointer_window.h"
#include "platform/menu_script.h"
#include "platform/recording_delegate.h"
#include "support/app.h"
#include "support/steps.h"

namespace {

constexpr CGEventMask left_button =
    CGEventMaskBit(kCGEventLeftMouseDown) | CGEventMaskBit(kCGEventLeftMouseUp);

class SessionTaps : public testing::Test {
  protected:
    SessionTaps() : pool_([NSAutoreleasePool new]) {
        test::start_application();
        CFRunLoopAddCommonMode(CFRunLoopGetCurrent(), (CFStringRef)NSEventTrackingRunLoopMode);
    }
    ~SessionTaps() override {
        if (tap_) {
            CFMachPortInvalidate(tap_);
            CFRelease(tap_);
        }
        script_.input.let_go();
        [pool_ release];
    }
    void make(CGEventMask mask) {
        tap_ = CGEventTapCreate(kCGSessionEventTap, kCGTailAppendEventTap,
                                kCGEventTapOptionListenOnly, mask, note, this);
        ASSERT_NE(tap_, nullptr);
        CFRunLoopSourceRef source = CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap_, 0);
        CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
        CFRelease(source);
    }
    static CGEventRef note(CGEventTapProxy, CGEventType type, CGEventRef event, void* self) {
        auto* test = static_cast<SessionTaps*>(self);
        const CGPoint at = CGEventGetLocation(event);
        if (!test->log_.empty()) test->log_ += ", ";
        test->log_ += std::to_string(type) + " at " + std::to_string(static_cast<int>(at.x)) + " " +
                      std::to_string(static_cast<int>(at.y));
        test->unflipped_ = CGEventGetUnflippedLocation(event);
        return nullptr;  // the result does not matter
    }
    // Runs the application until `count` events have been seen.
    void act_and_see(size_t count, const std::function<void()>& act) {
        test::Steps steps;
        steps.when(
            "the start", [] { return true; }, act);
        steps.when("the events", [&] { return seen() >= count; });
        steps.run();
    }
    size_t seen() const {
        size_t count = log_.empty() ? 0 : 1;
        for (const char c : log_) count += c == ',';
        return count;
    }

    NSAutoreleasePool* pool_;
    MenuScript script_;
    CFMachPortRef tap_ = nullptr;
    std::string log_;
    CGPoint unflipped_ = {};
};

}  // namespace

TEST_F(SessionTaps, SeeAClickOnTheBareScreen) {
    make(left_button);
    act_and_see(2, [this] {
        script_.input.move(1000, 700);
        script_.input.click(1);
    });
    EXPECT_EQ(log_, "1 at 1000 700, 2 at 1000 700");
    EXPECT_EQ(unflipped_.x, [NSEvent mouseLocation].x);
    EXPECT_EQ(unflipped_.y, [NSEvent mouseLocation].y);
}

TEST_F(SessionTaps, SeeAClickInAnotherProgramsWindow) {
    test::WindowProgram program({"window", "show", "focus"});
    make(left_button);
    act_and_see(2, [this] {
        script_.input.move(20, 20);
        script_.input.click(1);
    });
    EXPECT_EQ(log_, "1 at 20 20, 2 at 20 20");
}

TEST_F(SessionTaps, SeeAClickInOurOwnWindowWhichGetsItToo) {
    PointerWindow* window = [[PointerWindow new] autorelease];
    make(left_button);
    test::Steps steps;
    steps.when(
        "the window", [] { return true; },
        [this] {
            script_.input.move(150, 150);
            script_.input.click(1);
        });
    steps.when("the click",
               [&] { return seen() >= 2 && [window log].find("up") != std::string::npos; });
    steps.run();
    EXPECT_EQ(log_, "1 at 150 150, 2 at 150 150");
    EXPECT_EQ([window takeLog], "down 150 150, up 150 150");
}

TEST_F(SessionTaps, SeeAClickWhileAMenuHoldsThePointer) {
    make(left_button);
    RecordingDelegate* recorder = [[RecordingDelegate new] autorelease];
    NSMenu* menu = [recorder menuNamed:@"menu"];
    [recorder addItem:@"alpha" toMenu:menu];
    script_.when(
        "menu", [] { return level_is_shown(0); },
        [&] {
            script_.input.move(20, 700);
            script_.input.press(1);
        });
    script_.run(menu, 300, 200);
    script_.input.release(1);
    act_and_see(2, [] {});
    EXPECT_EQ(log_, "1 at 20 700, 2 at 20 700");
}

TEST_F(SessionTaps, SeeOnlyWhatTheyAskForAndNoWheel) {
    make(CGEventMaskBit(kCGEventRightMouseDown) | CGEventMaskBit(kCGEventOtherMouseUp));
    act_and_see(2, [this] {
        script_.input.move(1000, 700);
        for (const int button : {1, 4, 5, 3, 2}) script_.input.click(button);
    });
    EXPECT_EQ(log_, "3 at 1000 700, 26 at 1000 700");
}

TEST_F(SessionTaps, SeeNothingWhileTheyAreDisabled) {
    make(left_button);
    CGEventTapEnable(tap_, false);
    script_.input.move(1000, 700);
    script_.input.click(1);
    act_and_see(0, [] {});
    CGEventTapEnable(tap_, true);
    act_and_see(2, [this] {
        script_.input.move(900, 700);
        script_.input.click(1);
    });
    EXPECT_EQ(log_, "1 at 900 700, 2 at 900 700");
}

TEST_F(SessionTaps, AreListenersOfButtonsAlone) {
    const auto make = [](CGEventTapLocation location, CGEventTapOptions options, CGEventMask mask) {
        return CGEventTapCreate(location, kCGTailAppendEventTap, options, mask, note, nullptr);
    };
    EXPECT_EQ(make(kCGHIDEventTap, kCGEventTapOptionListenOnly, left_button), nullptr);
    EXPECT_EQ(make(kCGSessionEventTap, kCGEventTapOptionDefault, left_button), nullptr);
    EXPECT_EQ(
        make(kCGSessionEventTap, kCGEventTapOptionListenOnly, CGEventMaskBit(kCGEventMouseMoved)),
        nullptr);
    EXPECT_EQ(CGEventTapCreate(kCGSessionEventTap, kCGTailAppendEventTap,
                               kCGEventTapOptionListenOnly, left_button, nullptr, nullptr),
              nullptr);
}
