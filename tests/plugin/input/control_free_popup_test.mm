// Press and hold with a real pointer: which presses become a right click, and which do not.
#include "input/DVControlFreePopup.h"

#include <host/process.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include "controller/DVDelvio.h"
#include "desktop/window_program.h"
#include "finder/dv_finder.h"
#include "platform/events/pointer_window.h"
#include "plugin/input/popup_thread.h"
#include "plugin/input/posted_click.h"
#include "plugin/replaced_method.h"
#include "support/app.h"
#include "support/dv_log.h"
#include "support/steps.h"
#include "support/x_input.h"
#include "tree/dv_state.h"

namespace {

using test::PopupThread;

// The presses that the tap has reported, accepted or not.
int told = 0;
IMP accepting;

void count_press(id popup, SEL method, CGPoint unflipped, CGPoint flipped) {
    told++;
    reinterpret_cast<void (*)(id, SEL, CGPoint, CGPoint)>(accepting)(popup, method, unflipped,
                                                                     flipped);
}

class ControlFreePopup : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        test::start_application();
        declare_process_signature('MACS');
        CFRunLoopAddCommonMode(CFRunLoopGetCurrent(), (CFStringRef)NSEventTrackingRunLoopMode);
        [DVDelvio sharedDelvio];
        PopupThread::find([] { [DVControlFreePopup sharedControlFreePopup]; });
        static const test::ReplacedMethod counting([DVControlFreePopup class],
                                                   @selector(mouseDownAt:flipped:), count_press);
        accepting = counting.before();
    }
    ControlFreePopup() : pool_([NSAutoreleasePool new]), window_([PointerWindow new]) {
        dv_ = [[DVDelvio sharedDelvio] getDV];
        popup_ = [DVControlFreePopup sharedControlFreePopup];
        dv_->control_free_enabled = 2;
        dv_->control_free_delay_usec = 150000;
        move(150, 150);
        no_cursor_ = input_.cursor();
    }
    ~ControlFreePopup() override {
        if (PopupThread::is_in_delay()) PopupThread::let_delay_pass();
        input_.let_go();
        if (begun_) until_rest();
        until("no cursor", [this] { return input_.cursor() == no_cursor_; });
        dvEnableDebugOutput = 0;
        [window_ release];
        [pool_ release];
    }

    static void until(const char* what, const std::function<bool()>& condition) {
        test::Steps steps;
        steps.when(what, condition);
        steps.run();
    }
    void move(int x, int y) {
        input_.move(x, y);
        const int height = static_cast<int>(NSHeight([[[NSScreen screens] objectAtIndex:0] frame]));
        until("the pointer", [=] {
            const NSPoint at = [NSEvent mouseLocation];
            return at.x == x && at.y == height - y;
        });
    }
    uint32_t presses() const {
        const Ivar count = class_getInstanceVariable([popup_ class], "mouseDownCount");
        const char* fields = reinterpret_cast<const char*>(popup_);
        return *reinterpret_cast<const uint32_t*>(fields + ivar_getOffset(count));
    }
    // Runs until the tap has reported the press, and returns whether it was accepted.
    bool press() {
        const int told_before = told, rests_before = PopupThread::rests();
        const uint32_t before = presses();
        input_.press(1);
        until("the press", [&] { return told > told_before; });
        if (presses() == before) return false;
        begun_ = true;
        rests_before_ = rests_before;
        return true;
    }
    // Releases the button and presses again in the same place.
    bool press_again() {
        input_.release(1);
        return press();
    }
    // Waits until the thread has finished with the last accepted press.
    void until_rest() {
        until("the thread's rest", [this] { return PopupThread::rests() > rests_before_; });
    }
    void press_and_wait_for_delay() {
        ASSERT_TRUE(press());
        until("the delay", [] { return PopupThread::is_in_delay(); });
        EXPECT_EQ(PopupThread::asked_delay(), dv_->control_free_delay_usec);
    }
    void press_until_armed() {
        press_and_wait_for_delay();
        EXPECT_EQ(input_.cursor(), no_cursor_) << "not before the delay has passed";
        PopupThread::let_delay_pass();
        until("the cursor", [this] { return input_.cursor() != no_cursor_; });
    }
    int count_of(const std::string& word) const {
        int count = 0;
        const std::string log = ", " + [window_ log];
        for (size_t at = 0; (at = log.find(", " + word + " ", at)) != log.npos; at++) count++;
        return count;
    }
    bool has(const char* word) const { return count_of(word) > 0; }
    // The events that the window has got. Sends a click and waits for it first, so that all earlier
    // events have arrived.
    std::string log_when_all_has_come() {
        dv_->control_free_enabled = 0;
        const int ups = count_of("up");
        input_.click(1);
        until("a click", [&] { return count_of("up") > ups; });
        std::string log = [window_ takeLog];
        const size_t down = log.rfind("down 1", log.rfind("up 1"));
        return log.substr(0, down >= 2 ? down - 2 : 0);
    }

    NSAutoreleasePool* pool_;
    PointerWindow* window_;
    DVControlFreePopup* popup_;
    delvio_t* dv_;
    test::XInput input_;
    unsigned long no_cursor_ = 0;
    bool begun_ = false;
    int rests_before_ = 0;
};

}  // namespace

TEST_F(ControlFreePopup, AHeldPressThatIsLetGoIsFollowedByOneRightClickThere) {
    dvEnableDebugOutput = 1;
    testing::internal::CaptureStdout();
    press_until_armed();
    EXPECT_FALSE(has("right")) << "not before the release";
    input_.release(1);
    until("the right click", [this] { return has("right up"); });
    until_rest();
    dvEnableDebugOutput = 0;
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Delvio: Activate control-free popup\n");
    EXPECT_EQ(log_when_all_has_come(),
              "down 150 150, up 150 150, right down 150 150, right up 150 150");
}

TEST_F(ControlFreePopup, TheClickIsPostedInOneWayWhateverKeysAreHeld) {
    test::take_posting_calls();
    press_until_armed();
    until("a look at the pointer", [] { return PopupThread::asked_pause() != 0; });
    EXPECT_EQ(PopupThread::asked_pause(), 10000u);
    EXPECT_EQ(test::take_posting_calls(), "");
    input_.release(1);
    until_rest();
    EXPECT_EQ(test::take_posting_calls(),
              "interval 0, filter 7 0, filter 7 1, combining 0, post 150 150 1 2 0 1, "
              "post 150 150 1 2 0 0, combining 1");
}

TEST_F(ControlFreePopup, APressLetGoBeforeTheDelayIsAnOrdinaryClick) {
    dv_->control_free_delay_usec = 1000000;
    press_and_wait_for_delay();
    input_.release(1);
    until("the release", [this] { return has("up"); });
    PopupThread::let_delay_pass();
    until_rest();
    EXPECT_EQ(input_.cursor(), no_cursor_);
    EXPECT_EQ(log_when_all_has_come(), "down 150 150, up 150 150");
}

TEST_F(ControlFreePopup, AMoveByOnePixelWhileArmedCancelsEvenIfItReturns) {
    press_until_armed();
    input_.move(151, 150);
    until_rest();
    move(150, 150);
    input_.release(1);
    EXPECT_EQ(log_when_all_has_come(), "down 150 150, up 150 150");
}

TEST_F(ControlFreePopup, AMoveByOnePixelBeforeTheDelayCancels) {
    const int places[][2] = {{150, 151}, {151, 150}};
    for (const auto& place : places) {
        dv_->control_free_enabled = 2;
        move(150, 150);
        press_and_wait_for_delay();
        move(place[0], place[1]);
        PopupThread::let_delay_pass();
        until_rest();
        EXPECT_EQ(input_.cursor(), no_cursor_);
        input_.release(1);
        EXPECT_EQ(log_when_all_has_come().find("right"), std::string::npos);
    }
}

TEST_F(ControlFreePopup, SwitchedOffNoPressBeginsAnything) {
    dv_->control_free_enabled = 0;
    EXPECT_FALSE(press());
    input_.release(1);
    EXPECT_EQ(log_when_all_has_come(), "down 150 150, up 150 150");
}

TEST_F(ControlFreePopup, AControlClickBeginsNothing) {
    input_.key_down("Control_L");
    until("the key", [] { return ([NSEvent modifierFlags] & NSControlKeyMask) != 0; });
    EXPECT_FALSE(press());
    input_.release(1);
    input_.key_up("Control_L");
    until("no key", [] { return ([NSEvent modifierFlags] & NSControlKeyMask) == 0; });
    EXPECT_EQ(log_when_all_has_come().find("right"), std::string::npos);
}

TEST_F(ControlFreePopup, InModeOneOtherProgramsWindowsAreLeftAlone) {
    dv_->control_free_enabled = 1;
    test::WindowProgram program({"window", "show", "focus"});
    until("the other program", [] { return !dv_finder_is_front(); });
    move(30, 30);
    EXPECT_FALSE(press());
    input_.release(1);
    dv_->control_free_enabled = 2;
    press_until_armed();
    input_.move(31, 30);
}

TEST_F(ControlFreePopup, InModeOneTheFindersOwnWindowsCount) {
    dv_->control_free_enabled = 1;
    input_.focus(reinterpret_cast<uintptr_t>([[window_ window] windowRef]));
    until("the Finder", [] { return dv_finder_is_front(); });
    press_until_armed();
    input_.release(1);
    until("the right click", [this] { return has("right up"); });
}

TEST_F(ControlFreePopup, ASecondPressBeginsAnew) {
    press_and_wait_for_delay();
    ASSERT_TRUE(press_again());
    PopupThread::let_delay_pass();
    until("the second delay", [] { return PopupThread::is_in_delay(); });
    EXPECT_EQ(input_.cursor(), no_cursor_) << "the first one's is over";
    PopupThread::let_delay_pass();
    until("the cursor", [this] { return input_.cursor() != no_cursor_; });
    input_.release(1);
    until("the right click", [this] { return has("right up"); });
    until_rest();
    EXPECT_EQ(log_when_all_has_come(),
              "down 150 150, up 150 150, down 150 150, up 150 150, right down 150 150, right up "
              "150 150");
}

TEST_F(ControlFreePopup, ACancelledPressPostsNothing) {
    press_and_wait_for_delay();
    [popup_ mouseUpAt:CGPointMake(0, 0)];
    PopupThread::let_delay_pass();
    until_rest();
    EXPECT_EQ(input_.cursor(), no_cursor_);
    input_.release(1);
    EXPECT_EQ(log_when_all_has_come(), "down 150 150, up 150 150");
}

TEST_F(ControlFreePopup, TheThreadSleepsWithoutWakingWhileThereIsNoPress) {
    for (const uint32_t enabled : {0, 1, 2}) {
        dv_->control_free_enabled = enabled;
        until("sleep", [] { return PopupThread::sleeps_without_limit(); });
    }
}

TEST_F(ControlFreePopup, SwitchedOffTheThreadSleepsThroughClicks) {
    dv_->control_free_enabled = 0;
    const int told_before = told, before = PopupThread::wakings();
    for (int i = 0; i < 10; i++) input_.click(1);
    until("the clicks", [=] { return told == told_before + 10; });
    EXPECT_EQ(PopupThread::wakings(), before);
}
