// The menu by press and hold, in a file manager's window with the plug-in inside.
#include <AppKit/AppKit.h>
#include <Carbon/Processes.h>
#include <gtest/gtest.h>

#include "desktop/desk.h"
#include "desktop/window_program.h"
#include "support/settled.h"

namespace {

using test::Steps;
using Titles = std::vector<std::string>;

class PressAndHold : public test::Desk {
  protected:
    void SetUp() override {
        folder_.file("project/readme.txt", "r");
        select({folder_.path("project")});
        set_preference("logLevel", "2");
        set_preference("control_free_delay_usec", "150000");
        enable(2);
        // Before the first hold there is only one cursor.
        if (usual_ == 0) usual_ = test::settled([this] { return input().cursor(); });
    }
    void TearDown() override {
        enable(0);
        set_preference("logLevel", "0");
    }
    // A setting takes effect with the next menu.
    void enable(int mode) {
        set_preference("control_free_enabled", std::to_string(mode));
        walk({});
        input().move(300, 350);
    }
    static size_t activations() { return log_lines("Delvio: Activate control-free popup").size(); }
    static bool is_front() {
        ProcessSerialNumber front, current;
        Boolean same = false;
        GetCurrentProcess(&current);
        return GetFrontProcess(&front) == noErr && SameProcess(&front, &current, &same) == noErr &&
               same;
    }
    bool has_usual_cursor() { return input().cursor() == usual_; }
    // Presses when the cursor of an earlier hold has gone, which takes a moment; holds until the
    // cursor shows that the menu is armed, and goes on.
    void hold(Steps& steps, std::function<void()> then) {
        steps.when(
            "the usual cursor", [this] { return has_usual_cursor(); },
            [this] { input().press(1); });
        steps.when(
            "the armed cursor", [this] { return !has_usual_cursor(); }, then);
    }

    static unsigned long usual_;
};

unsigned long PressAndHold::usual_ = 0;

}  // namespace

TEST_F(PressAndHold, OpensTheMenuWithThePlugInsItems) {
    Titles shown;
    Steps steps;
    hold(steps, [this] { input().release(1); });
    steps.when(
        "the menu", [this] { return is_open(0); },
        [&] {
            shown = titles(0);
            escape();
        });
    const int popups = [window() popups];
    steps.when("its end", [&] { return [window() popups] > popups; });
    steps.run();
    EXPECT_EQ(shown, Titles({"project", "-", "Open", "Get Info", "Duplicate"}));
}

TEST_F(PressAndHold, AMoveByOnePixelCancels) {
    const size_t before = activations();
    Steps steps;
    hold(steps, [this] { input().move(301, 350); });
    steps.when(
        "the cursor as it was", [this] { return has_usual_cursor(); },
        [this] { input().release(1); });
    NSDate* later = [NSDate dateWithTimeIntervalSinceNow:1];
    steps.when("a while", [&] { return [later timeIntervalSinceNow] < 0; });
    steps.run();
    EXPECT_EQ(activations(), before);
    EXPECT_FALSE(is_open(0));
}

TEST_F(PressAndHold, ThePickedFileOpens) {
    Steps steps;
    hold(steps, [this] { input().release(1); });
    hover_along(steps, {"project"});
    steps.when(
        "the level", [this] { return is_open(1); }, [this] { click("readme.txt"); });
    const int popups = [window() popups];
    steps.when("its end", [&] { return [window() popups] > popups; });
    steps.run();
    EXPECT_EQ(program().wait(), Titles({folder_.path("project/readme.txt")}));
}

TEST_F(PressAndHold, OtherProgramsWindowsCountInModeTwoAlone) {
    test::WindowProgram program({"window", "show", "focus"});
    const size_t before = activations();
    Steps steps;
    steps.when(
        "the hand", [] { return true; }, [this] { input().move(30, 30); });
    hold(steps, [this] { input().release(1); });
    steps.when("the right click", [&] { return activations() > before; });
    steps.run();
    EXPECT_EQ(activations(), before + 1);

    enable(1);
    test::WindowProgram front({"window", "show", "focus"});
    Steps second;
    NSDate* later = nil;
    second.when(
        "the other program in front", [] { return !is_front(); }, [this] { input().move(30, 30); });
    second.when(
        "the usual cursor", [this] { return has_usual_cursor(); },
        [&] {
            later = [[NSDate dateWithTimeIntervalSinceNow:1] retain];
            input().press(1);
        });
    second.when(
        "a while", [&] { return [later timeIntervalSinceNow] < 0; },
        [this] {
            EXPECT_TRUE(has_usual_cursor());
            input().release(1);
        });
    second.run();
    [later release];
    EXPECT_EQ(activations(), before + 1);
}
