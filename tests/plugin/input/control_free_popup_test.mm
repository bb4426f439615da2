// Press and hold with a real pointer: what becomes a right click, and what does not.
#include "input/DVControlFreePopup.h"

#include <Carbon/HostProcess.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <set>

#include "desktop/window_program.h"
#include "loader/DVDelvio.h"
#include "platform/events/pointer_window.h"
#include "support/app.h"
#include "support/dv_log.h"
#include "support/steps.h"
#include "support/x_input.h"
#include "tree/dv_state.h"

namespace {

std::set<std::string> threads() {
    std::set<std::string> names;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        names.insert(task.path().filename());
    }
    return names;
}

// How often a thread has gone to sleep or been put there.
long switches_of(const std::string& thread) {
    std::ifstream status("/proc/self/task/" + thread + "/status");
    long count = 0;
    for (std::string line; std::getline(status, line);) {
        if (line.find("ctxt_switches:") != line.npos)
            count += std::stol(line.substr(line.find(':') + 1));
    }
    return count;
}

class ControlFreePopup : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        test::start_application();
        DeclareProcessSignature('MACS');
        CFRunLoopAddCommonMode(CFRunLoopGetCurrent(), (CFStringRef)NSEventTrackingRunLoopMode);
        [DVDelvio sharedDelvio];
        const std::set<std::string> before = threads();
        [DVControlFreePopup sharedControlFreePopup];
        for (const std::string& thread : threads()) {
            if (!before.count(thread)) thread_ = thread;
        }
    }
    ControlFreePopup() : pool_([NSAutoreleasePool new]), window_([PointerWindow new]) {
        dv_ = [[DVDelvio sharedDelvio] getDV];
        popup_ = [DVControlFreePopup sharedControlFreePopup];
        dv_->control_free_enabled = 2;
        dv_->control_free_delay_usec = 150000;
        input_.move(150, 150);
        let_pass(0.05);
        no_cursor_ = input_.cursor();
    }
    ~ControlFreePopup() override {
        input_.let_go();
        until("no cursor", [this] { return input_.cursor() == no_cursor_; });
        [window_ release];
        [pool_ release];
    }

    static void until(const char* what, const std::function<bool()>& condition) {
        test::Steps steps;
        steps.when(what, condition);
        steps.run();
    }
    static void let_pass(double seconds) {
        NSDate* end = [NSDate dateWithTimeIntervalSinceNow:seconds];
        until("time", [end] { return [end timeIntervalSinceNow] <= 0; });
    }
    uint32_t presses() const {
        const Ivar count = class_getInstanceVariable([popup_ class], "mouseDownCount");
        const char* fields = reinterpret_cast<const char*>(popup_);
        return *reinterpret_cast<const uint32_t*>(fields + ivar_getOffset(count));
    }
    // Runs until the tap has seen the press.
    void press() {
        const uint32_t before = presses();
        input_.press(1);
        until("the press", [&] { return presses() > before; });
    }
    void wait_until_armed() {
        until("the cursor", [this] { return input_.cursor() != no_cursor_; });
    }
    bool has(const char* word) const { return [window_ log].find(word) != std::string::npos; }

    static std::string thread_;
    NSAutoreleasePool* pool_;
    PointerWindow* window_;
    DVControlFreePopup* popup_;
    delvio_t* dv_;
    test::XInput input_;
    unsigned long no_cursor_ = 0;
};

std::string ControlFreePopup::thread_;

constexpr double longer_than_the_delay = 0.4;

}  // namespace

TEST_F(ControlFreePopup, AHeldPressThatIsLetGoIsFollowedByOneRightClickThere) {
    testing::internal::CaptureStdout();
    dvEnableDebugOutput = 1;
    press();
    wait_until_armed();
    EXPECT_FALSE(has("right")) << "not before the release";
    input_.release(1);
    until("the right click", [this] { return has("right up"); });
    dvEnableDebugOutput = 0;
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Delvio: Activate control-free popup\n");
    let_pass(longer_than_the_delay);
    EXPECT_EQ([window_ takeLog], "down 150 150, up 150 150, right down 150 150, right up 150 150");
}

TEST_F(ControlFreePopup, APressLetGoBeforeTheDelayIsAnOrdinaryClick) {
    dv_->control_free_delay_usec = 1000000;
    press();
    input_.release(1);
    let_pass(1.3);
    EXPECT_EQ([window_ takeLog], "down 150 150, up 150 150");
    EXPECT_EQ(input_.cursor(), no_cursor_);
}

TEST_F(ControlFreePopup, AMoveByOnePixelWhileArmedCancelsEvenIfItReturns) {
    press();
    wait_until_armed();
    input_.move(151, 150);
    until("the cursor as it was", [this] { return input_.cursor() == no_cursor_; });
    let_pass(0.1);
    input_.move(150, 150);
    input_.release(1);
    let_pass(longer_than_the_delay);
    EXPECT_EQ([window_ takeLog], "down 150 150, up 150 150");
}

TEST_F(ControlFreePopup, AMoveByOnePixelBeforeTheDelayCancels) {
    press();
    input_.move(150, 151);
    let_pass(longer_than_the_delay);
    EXPECT_EQ(input_.cursor(), no_cursor_);
    input_.release(1);
    let_pass(0.2);
    EXPECT_FALSE(has("right"));
}

TEST_F(ControlFreePopup, SwitchedOffNoPressBeginsAnything) {
    dv_->control_free_enabled = 0;
    const uint32_t before = presses();
    input_.press(1);
    until("the press", [this] { return has("down"); });
    let_pass(longer_than_the_delay);
    EXPECT_EQ(presses(), before);
    EXPECT_EQ(input_.cursor(), no_cursor_);
    input_.release(1);
    until("the release", [this] { return has("up"); });
    EXPECT_FALSE(has("right"));
}

TEST_F(ControlFreePopup, AControlClickBeginsNothing) {
    const uint32_t before = presses();
    input_.key_down("Control_L");
    input_.press(1);
    until("the press", [this] { return has("down"); });
    let_pass(longer_than_the_delay);
    EXPECT_EQ(presses(), before);
    input_.release(1);
    input_.key_up("Control_L");
    until("the release", [this] { return has("up"); });
    EXPECT_FALSE(has("right"));
}

TEST_F(ControlFreePopup, InModeOneOtherProgramsWindowsAreLeftAlone) {
    dv_->control_free_enabled = 1;
    test::WindowProgram program({"window", "show", "focus"});
    const uint32_t before = presses();
    input_.move(30, 30);
    // The other program comes to the front in its own time.
    let_pass(0.5);
    input_.press(1);
    let_pass(longer_than_the_delay);
    input_.release(1);
    let_pass(0.1);
    EXPECT_EQ(presses(), before);
    dv_->control_free_enabled = 2;
    press();
    wait_until_armed();
    input_.move(31, 30);
    EXPECT_EQ(presses(), before + 1);
}

TEST_F(ControlFreePopup, InModeOneTheFindersOwnWindowsCount) {
    dv_->control_free_enabled = 1;
    input_.focus(reinterpret_cast<uintptr_t>([[window_ window] windowRef]));
    press();
    wait_until_armed();
    input_.release(1);
    until("the right click", [this] { return has("right up"); });
}

TEST_F(ControlFreePopup, ASecondPressBeginsAnew) {
    dv_->control_free_delay_usec = 500000;
    press();
    input_.release(1);
    press();
    wait_until_armed();
    input_.release(1);
    until("the right click", [this] { return has("right up"); });
    let_pass(longer_than_the_delay);
    const std::string log = [window_ takeLog];
    EXPECT_EQ(log.find("right down"), log.rfind("right down")) << log;
}

TEST_F(ControlFreePopup, ACancelledPressPostsNothing) {
    dv_->control_free_delay_usec = 400000;
    press();
    [popup_ mouseUpAt:CGPointMake(0, 0)];
    let_pass(0.8);
    EXPECT_EQ(input_.cursor(), no_cursor_);
    input_.release(1);
    let_pass(0.1);
    EXPECT_FALSE(has("right"));
}

TEST_F(ControlFreePopup, TheThreadSleepsWithoutWakingWhileThereIsNoPress) {
    ASSERT_FALSE(thread_.empty());
    for (const uint32_t enabled : {0, 1, 2}) {
        dv_->control_free_enabled = enabled;
        let_pass(0.3);  // whatever went before has come to rest
        const long before = switches_of(thread_);
        EXPECT_GT(before, 0);
        let_pass(1.5);
        EXPECT_EQ(switches_of(thread_), before) << "enabled " << enabled;
    }
}

TEST_F(ControlFreePopup, SwitchedOffTheThreadSleepsThroughClicks) {
    dv_->control_free_enabled = 0;
    let_pass(0.3);
    const long before = switches_of(thread_);
    for (int i = 0; i < 10; i++) input_.click(1);
    until("the clicks", [this] { return has("up"); });
    let_pass(0.3);
    EXPECT_EQ(switches_of(thread_), before);
}
