// Starting the toolkit without the parts that a menu does not need, and loading these parts later.
#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>
#include <gtest/gtest.h>
#include <host/light_start.h>
#include <host/menu_tracking.h>
#include <objc/runtime.h>

#include "platform/menu_script.h"
#include "platform/recording_delegate.h"
#include "support/app.h"

namespace {

class LightStart : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        Display* watcher = XOpenDisplay(nullptr);
        XSelectInput(watcher, DefaultRootWindow(watcher), SubstructureNotifyMask);
        XSync(watcher, False);
        @autoreleasepool {
            start_lightly();
            test::start_application();
        }
        XSync(watcher, False);
        while (XPending(watcher)) {
            XEvent event;
            XNextEvent(watcher, &event);
            if (event.type == MapNotify) windows++;
        }
        XCloseDisplay(watcher);
    }
    static int windows;  // windows that the start has shown
};

int LightStart::windows = 0;

// The input method and its tables; null while it is not open.
void* input_method() {
    id server = GSCurrentServer();
    id input = object_getIvar(server, class_getInstanceVariable([server class], "inputServer"));
    Ivar method = class_getInstanceVariable([input class], "xim");
    const char* fields = reinterpret_cast<const char*>(input);
    return *reinterpret_cast<void* const*>(fields + ivar_getOffset(method));
}

}  // namespace

TEST_F(LightStart, TriesNoFrameWhereNoWindowManagerRuns) { EXPECT_LE(windows, 1); }

TEST_F(LightStart, LeavesTheInputMethodToTheFirstKeyWithACharacterWhichIsNotLost) {
    @autoreleasepool {
        RecordingDelegate* recorder = [[RecordingDelegate new] autorelease];
        NSMenu* menu = [recorder menuNamed:@"menu"];
        [recorder addItem:@"eagle" toMenu:menu];
        [recorder addItem:@"other" toMenu:menu];
        MenuScript script;
        script.input.move(10, 10);
        script.when(
            "shown", [] { return level_is_shown(0) && [NSApp keyWindow]; },
            [&] {
                EXPECT_EQ(input_method(), nullptr);
                script.input.key("Down");
            });
        script.when(
            "first item", [] { return highlighted_title(0) == "eagle"; },
            [&] {
                EXPECT_EQ(input_method(), nullptr);
                script.input.key("o");
            });
        script.when(
            "letter", [] { return highlighted_title(0) == "other"; },
            [&] {
                EXPECT_NE(input_method(), nullptr);
                script.input.key("Return");
            });
        script.run(menu, 300, 200);
        EXPECT_NE([recorder takeLog].find("pick other"), std::string::npos);
    }
}
