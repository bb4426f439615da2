// File operations from a menu that is shown: the question about taken names, with and without a
// window manager; signals; the desktop's file manager. The tests use real keys.
#include <gtest/gtest.h>

#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "hosts/bus_service.h"
#include "hosts/command_runner.h"
#include "support/managed_windows.h"
#include "support/temp_folder.h"
#include "support/waiting.h"
#include "support/x_input.h"

namespace {

using test::Outcome;
using test::output_of;
using test::read_file;
using test::RunningCommand;
using test::wait_for;

void press(const std::string& keys) { output_of("xdotool key --delay 60 " + keys); }

// A window may be sent keys before it accepts them, so they are sent again while they have no
// visible effect.
bool press_until_seen(const std::string& key) {
    const auto picture = [] { return output_of("import -silent -window root rgba:- | md5sum"); };
    for (int tries = 0; tries < 5; tries++) {
        const std::string before = picture();
        press(key);
        for (int turn = 0; turn < 200; turn++) {
            if (picture() != before) return true;
            usleep(20000);
        }
    }
    return false;
}

class Operation : public testing::Test {
  protected:
    void SetUp() override {
        folder_.folder("to/below");
        folder_.file("a.txt", "new a");
        folder_.file("b.txt", "b");
    }
    // Its menu's first rows are the folder "to", with "Move selection here" as the first below.
    std::vector<std::string> words() const {
        return {"menu",
                "--at",
                "200,150",
                folder_.path("to"),
                folder_.path("a.txt"),
                folder_.path("b.txt")};
    }
    // The menu has grabbed pointer and keyboard once it accepts keys.
    bool menu_is_open() { return !input_.pointer_is_free() && !input_.keyboard_is_free(); }
    static int menu_levels() {
        const std::string levels = output_of("xdotool search --onlyvisible --name '^Menu$'");
        return static_cast<int>(std::count(levels.begin(), levels.end(), '\n'));
    }
    bool move_selection() {
        if (!wait_for([&] { return menu_is_open(); })) return false;
        press("Down Right");
        if (!wait_for([] { return menu_levels() == 2; })) return false;
        press("Return");
        return true;
    }
    static bool has_keys(const std::string& title) {
        const std::string window =
            output_of("xdotool search --onlyvisible --name '^" + title + "$'");
        return !window.empty() && window == output_of("xdotool getwindowfocus");
    }
    static bool alert_has_keys() { return has_keys("Replace duplicate files[?]"); }
    // Closes it with the button in its title bar.
    bool close(const std::string& title) {
        std::optional<test::ManagedWindow> window;
        if (!wait_for([&] { return (window = windows_.settled(title)).has_value(); })) return false;
        const test::ScreenPoint button = windows_.close_button(*window);
        input_.move(button.x, button.y);
        input_.click(1);
        return true;
    }

    test::TempFolder folder_;
    test::XInput input_;
    test::ManagedWindows windows_;
};

class ManagedOperation : public Operation {
    test::WindowManager manager_;
};

// With a window manager, and without one.
class ShownOperation : public Operation, public testing::WithParamInterface<bool> {
    const std::unique_ptr<test::WindowManager> manager_{GetParam() ? new test::WindowManager
                                                                   : nullptr};
};

INSTANTIATE_TEST_SUITE_P(WithoutAndWithAManager, ShownOperation, testing::Bool());

}  // namespace

TEST_P(ShownOperation, MovesAndEnds) {
    RunningCommand command(words());
    ASSERT_TRUE(move_selection());
    const Outcome outcome = command.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(read_file(folder_.path("to/a.txt")), "new a");
    EXPECT_EQ(read_file(folder_.path("to/b.txt")), "b");
    EXPECT_EQ(read_file(folder_.path("a.txt")), "");
}

TEST_P(ShownOperation, TheAlertHasTheKeys) {
    folder_.file("to/a.txt", "old a");
    RunningCommand command(words());
    ASSERT_TRUE(move_selection());
    ASSERT_TRUE(wait_for(alert_has_keys));
    // The second button: "Replace files".
    ASSERT_TRUE(press_until_seen("Tab"));
    ASSERT_TRUE(press_until_seen("Tab"));
    press("space");
    EXPECT_EQ(command.finish().status, 0);
    EXPECT_EQ(read_file(folder_.path("to/a.txt")), "new a");
    EXPECT_EQ(read_file(folder_.path("a.txt")), "");
}

TEST_P(ShownOperation, ASignalEndsTheAlertAndNothingIsDone) {
    folder_.file("to/a.txt", "old a");
    RunningCommand command(words());
    ASSERT_TRUE(move_selection());
    ASSERT_TRUE(wait_for(alert_has_keys));
    command.send_signal(SIGTERM);
    EXPECT_EQ(command.finish().status, 128 + SIGTERM);
    EXPECT_EQ(read_file(folder_.path("to/a.txt")), "old a");
    EXPECT_EQ(read_file(folder_.path("a.txt")), "new a");
    EXPECT_EQ(read_file(folder_.path("b.txt")), "b");
}

TEST_F(ManagedOperation, CloseButtonsReplaceNothingAndKillNothing) {
    folder_.file("to/a.txt", "old a");
    RunningCommand command(words());
    ASSERT_TRUE(move_selection());
    ASSERT_TRUE(close("Replace duplicate files?"));
    ASSERT_TRUE(close("Name Already Taken"));
    EXPECT_EQ(command.finish().status, 0);
    EXPECT_EQ(read_file(folder_.path("to/a.txt")), "old a");
    EXPECT_EQ(read_file(folder_.path("a.txt")), "new a");
}

TEST_P(ShownOperation, TheFileManagerIsAskedWhenSet) {
    const test::SessionBus bus;
    test::BusService thunar(bus, "org.xfce.FileManager", "/org/xfce/FileManager",
                            "<node><interface name='org.xfce.FileManager'><method name='MoveInto'>"
                            "<arg type='s' direction='in'/><arg type='as' direction='in'/>"
                            "<arg type='s' direction='in'/><arg type='s' direction='in'/>"
                            "<arg type='s' direction='in'/></method></interface></node>");
    std::vector<std::string> asked = words();
    asked.insert(asked.begin() + 1, {"--setting", "operations_by_file_manager=1"});
    RunningCommand command(asked);
    ASSERT_TRUE(move_selection());
    EXPECT_EQ(command.finish().status, 0);
    ASSERT_EQ(thunar.calls().size(), 1u);
    EXPECT_EQ(thunar.calls()[0].find("org.xfce.FileManager.MoveInto('/', ['file://"), 0u);
    EXPECT_EQ(read_file(folder_.path("a.txt")), "new a") << "moving it is the file manager's";
}
