// File operations from a menu that is shown: the question about names that are taken, with a window
// manager and without; signals; the desktop's file manager. Driven by real keys.
#include <gtest/gtest.h>

#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "hosts/bus_service.h"
#include "hosts/command_runner.h"
#include "support/temp_folder.h"

namespace {

using test::Outcome;
using test::read_file;
using test::RunningCommand;

bool wait_for(const std::function<bool()>& happened) {
    for (int turn = 0; turn < 1000 && !happened(); ++turn) usleep(20000);
    return happened();
}

std::string output_of(const std::string& command) {
    FILE* in = popen((command + " 2>/dev/null").c_str(), "r");
    std::string text;
    for (int byte; (byte = fgetc(in)) != EOF;) text += static_cast<char>(byte);
    pclose(in);
    return text;
}

void press(const std::string& keys) { output_of("xdotool key --delay 60 " + keys); }

pid_t start_manager(const std::string& ready) {
    const pid_t manager = fork();
    if (manager == 0) {
        execlp("openbox", "openbox", "--startup", ("touch " + ready).c_str(),
               static_cast<char*>(nullptr));
        _exit(127);
    }
    return manager;
}

// With a window manager, and without one.
class ShownOperation : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        if (GetParam()) {
            const std::string ready = folder_.path("ready");
            manager_ = start_manager(ready);
            ASSERT_TRUE(wait_for([&] { return access(ready.c_str(), F_OK) == 0; }));
        }
        folder_.folder("to/below");
        folder_.file("a.txt", "new a");
        folder_.file("b.txt", "b");
    }
    void TearDown() override {
        if (manager_ <= 0) return;
        kill(manager_, SIGTERM);
        waitpid(manager_, nullptr, 0);
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
    static bool menu_is_open() {
        return !output_of("xdotool search --onlyvisible --name '^Window$'").empty();
    }
    static bool move_selection() {
        if (!wait_for(menu_is_open)) return false;
        usleep(300000);  // until the menu has the keys
        press("Down Right");
        usleep(200000);
        press("Return");
        return true;
    }
    static bool alert_has_keys() {
        const std::string alert = output_of("xdotool search --onlyvisible --name '^delvio$'");
        return !alert.empty() && alert == output_of("xdotool getwindowfocus");
    }

    test::TempFolder folder_;
    pid_t manager_ = 0;
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
    usleep(300000);
    // The second button: "Replace files".
    press("Tab Tab space");
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
