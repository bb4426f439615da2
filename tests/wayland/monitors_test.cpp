// The menu on an X server with two monitors: a high one on the left, and a low one right of it.
#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <stdlib.h>

#include <algorithm>

#include "hosts/command_runner.h"
#include "support/temp_folder.h"
#include "support/x_input.h"
#include "support/waiting.h"

namespace {

using test::RunningCommand;
using test::wait_for;

struct Monitors : testing::Test {
    test::TempFolder folder;
    test::XInput input;
    Display* display = XOpenDisplay(nullptr);
    std::unique_ptr<RunningCommand> command;

    static void SetUpTestSuite() {
        ASSERT_EQ(system("xrandr --setmonitor left 640/169x800/211+0+0 screen && "
                         "xrandr --setmonitor right 640/169x400/105+640+0 none"),
                  0);
    }
    void SetUp() override {
        XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        folder.file("top/alpha.txt");
    }
    void TearDown() override {
        input.let_go();
        command.reset();
        XCloseDisplay(display);
    }

    // The menu's windows from left to right.
    std::vector<XWindowAttributes> levels() const {
        Window ignored, *windows = nullptr;
        unsigned count = 0;
        std::vector<XWindowAttributes> found;
        XQueryTree(display, DefaultRootWindow(display), &ignored, &ignored, &windows, &count);
        for (unsigned i = 0; i < count; i++) {
            XWindowAttributes window;
            if (!XGetWindowAttributes(display, windows[i], &window)) continue;
            const bool popup = window.override_redirect && window.map_state == IsViewable;
            if (popup && window.width > 20) found.push_back(window);
        }
        if (windows) XFree(windows);
        std::sort(found.begin(), found.end(),
                  [](const auto& one, const auto& other) { return one.x < other.x; });
        return found;
    }
    bool open_at(int x, int y) {
        input.move(x, y);
        command =
            std::make_unique<RunningCommand>(std::vector<std::string>{"menu", folder.path("top")});
        return wait_for([&] {
            return levels().size() == 1 && !input.pointer_is_free() && !input.keyboard_is_free();
        });
    }
    void expect_end() {
        input.key("Escape");
        EXPECT_EQ(command->finish().status, 0);
    }
};

TEST_F(Monitors, TheMenuStaysOnThePointersMonitor) {
    ASSERT_TRUE(open_at(630, 300));
    EXPECT_LE(levels()[0].x + levels()[0].width, 640);
    expect_end();
    ASSERT_TRUE(open_at(645, 300));
    EXPECT_GE(levels()[0].x, 640);
    expect_end();
}

TEST_F(Monitors, TheMenuEndsAboveTheLowMonitorsEdge) {
    ASSERT_TRUE(open_at(900, 390));
    EXPECT_LE(levels()[0].y + levels()[0].height, 400);
    expect_end();
    ASSERT_TRUE(open_at(300, 390));
    EXPECT_GT(levels()[0].y + levels()[0].height, 400);
    expect_end();
}

TEST_F(Monitors, ASubmenuOpensOnTheSideWhereItsMonitorHasRoom) {
    ASSERT_TRUE(open_at(420, 100));
    const XWindowAttributes root = levels()[0];
    for (const char* key : {"t", "o", "p", "Right"}) input.key(key);
    ASSERT_TRUE(wait_for([&] { return levels().size() == 2; }));
    EXPECT_EQ(levels()[1].x, root.x);
    EXPECT_LT(levels()[0].x, root.x) << "on the left, although the other monitor lies right";
    input.key("Left");
    expect_end();
}

}  // namespace
