#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#include "hosts/command_runner.h"
#include "hosts/slow_display.h"
#include "support/recording_program.h"
#include "support/temp_folder.h"
#include "support/waiting.h"
#include "support/x_clients.h"

namespace fs = std::filesystem;

namespace {

using test::Outcome;
using test::output_of;
using test::run_delvio;
using test::RunningCommand;
using test::wait_for;
using Paths = std::vector<std::string>;

void press(const std::string& keys) { output_of("xdotool key " + keys); }

std::vector<pid_t> children_of(pid_t process) {
    const std::string id = std::to_string(process);
    std::ifstream in("/proc/" + id + "/task/" + id + "/children");
    std::vector<pid_t> children;
    for (pid_t child; in >> child;) children.push_back(child);
    return children;
}

struct ShownMenu : testing::Test {
    test::TempFolder folder;
    Display* display = XOpenDisplay(nullptr);

    void SetUp() override {
        ASSERT_NE(display, nullptr);
        // A window may disappear between its listing and the query about it.
        XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    }
    void TearDown() override {
        if (!display) return;
        command.reset();
        // The resident host closes the menu of a command that was killed.
        EXPECT_TRUE(wait_for([this] { return shown_window().width == 0 && !is_grabbed(); }));
        XCloseDisplay(display);
    }

    Window root() const { return DefaultRootWindow(display); }

    // The visible windows that no window manager may manage; the topmost is the last.
    std::vector<XWindowAttributes> shown_windows() const {
        Window ignored, *windows = nullptr;
        unsigned count = 0;
        std::vector<XWindowAttributes> found;
        XQueryTree(display, root(), &ignored, &ignored, &windows, &count);
        for (unsigned i = 0; i < count; ++i) {
            XWindowAttributes window;
            if (!XGetWindowAttributes(display, windows[i], &window)) continue;
            const bool popup = window.override_redirect && window.map_state == IsViewable;
            if (popup && window.width > 20) found.push_back(window);
        }
        if (windows) XFree(windows);
        return found;
    }
    // The topmost window; 0 for none.
    XWindowAttributes shown_window() const {
        const std::vector<XWindowAttributes> all = shown_windows();
        return all.empty() ? XWindowAttributes{} : all.back();
    }

    // Leaves a menu open whose pointer rests on the one file of a folder, and a window beside it:
    // the two levels, and the window. The file is no picture, so its text is shown.
    std::vector<XWindowAttributes> windows_with_preview(const std::string& setting) {
        folder.file("top/note.txt", "a note\n");
        command = std::make_unique<RunningCommand>(Paths{"menu", "--at", "100,100", "--setting",
                                                         "hoverPreviewsInterval=100", "--setting",
                                                         setting, folder.path("top")});
        if (!wait_until_open()) return {};
        const XWindowAttributes root_level = shown_window();
        point(root_level.x + 20, root_level.y + 16);
        if (!wait_for([&] { return shown_windows().size() == 2; })) return {};
        const XWindowAttributes level = shown_window();
        point(level.x + 20, level.y + 16);
        wait_for([&] { return shown_windows().size() == 3 && shown_window().width > 250; });
        return shown_windows();
    }
    void point(int x, int y) const {
        output_of("xdotool mousemove " + std::to_string(x) + " " + std::to_string(y));
    }
    std::unique_ptr<RunningCommand> command;

    // Whether a program has grabbed the pointer, as it does while a menu is open.
    bool is_grabbed() const {
        const int result = XGrabPointer(display, root(), False, 0, GrabModeAsync, GrabModeAsync,
                                        None, None, CurrentTime);
        if (result == GrabSuccess) XUngrabPointer(display, CurrentTime);
        XSync(display, False);
        return result == AlreadyGrabbed;
    }

    // Whether a program has grabbed the keyboard, as it does while a menu is open.
    bool keys_are_grabbed() const {
        const int result =
            XGrabKeyboard(display, root(), False, GrabModeAsync, GrabModeAsync, CurrentTime);
        if (result == GrabSuccess) XUngrabKeyboard(display, CurrentTime);
        XSync(display, False);
        return result == AlreadyGrabbed;
    }

    bool wait_until_open() const {
        return wait_for(
            [&] { return shown_window().width > 0 && is_grabbed() && keys_are_grabbed(); });
    }
};

TEST_F(ShownMenu, WaitsUntilItIsClosed) {
    RunningCommand command({"menu", "--at", "200,150", folder.folder("top")});
    ASSERT_TRUE(wait_until_open());
    press("Escape");
    const Outcome outcome = command.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
}

// The toolkit's, the one for questions and the one for raw presses: docs/architecture.md says why.
TEST_F(ShownMenu, HasThreeConnectionsToTheServer) {
    ASSERT_EQ(windows_with_preview("preview_beside_menu=1").size(), 3u);
    EXPECT_EQ(test::connections_of(command->process()), 3);
    press("Escape Escape");
    EXPECT_EQ(command->finish().status, 0);
}

TEST_F(ShownMenu, StandsWhereItIsAsked) {
    RunningCommand command({"menu", "--at", "200,150", folder.folder("top")});
    ASSERT_TRUE(wait_until_open());
    const XWindowAttributes window = shown_window();
    EXPECT_NEAR(window.x, 200, 20);
    EXPECT_NEAR(window.y, 150, 20);
}

TEST_F(ShownMenu, StandsAtThePointer) {
    XWarpPointer(display, None, root(), 0, 0, 0, 0, 420, 310);
    XSync(display, False);
    RunningCommand command({"menu", folder.folder("top")});
    ASSERT_TRUE(wait_until_open());
    const XWindowAttributes window = shown_window();
    EXPECT_NEAR(window.x, 420, 20);
    EXPECT_NEAR(window.y, 310, 20);
}

bool overlap(const XWindowAttributes& one, const XWindowAttributes& other) {
    return one.x < other.x + other.width && other.x < one.x + one.width &&
           one.y < other.y + other.height && other.y < one.y + one.height;
}

TEST_F(ShownMenu, ShowsAPreviewRightBesideTheLevels) {
    const auto windows = windows_with_preview("preview_beside_menu=1");
    ASSERT_EQ(windows.size(), 3u);
    const XWindowAttributes &level = windows[1], &preview = windows[2];
    EXPECT_FALSE(overlap(preview, windows[0]));
    EXPECT_FALSE(overlap(preview, level));
    EXPECT_GT(preview.x, level.x + level.width);
    EXPECT_LT(preview.x, level.x + level.width + 20);
    EXPECT_LT(preview.y, level.y + level.height);
    press("Escape");
    EXPECT_EQ(command->finish().status, 0);
}

TEST_F(ShownMenu, ShowsAPreviewInTheScreensCornerAndAboveTheLevelsIfItIsSetSo) {
    const auto windows = windows_with_preview("preview_beside_menu=0");
    ASSERT_EQ(windows.size(), 3u);
    const XWindowAttributes& preview = windows[2];
    const int side = 512 + 16;  // with the frame
    EXPECT_EQ(preview.x, 0);
    EXPECT_EQ(preview.y, DisplayHeight(display, 0) - side);
    EXPECT_EQ(preview.width, side);
    EXPECT_EQ(preview.height, side);
    press("Escape");
    EXPECT_EQ(command->finish().status, 0);
}

TEST_F(ShownMenu, ShowsNoOtherWindow) {
    RunningCommand command({"menu", "--at", "200,150", folder.folder("top")});
    ASSERT_TRUE(wait_until_open());
    Window ignored, *windows = nullptr;
    unsigned count = 0, viewable = 0;
    XQueryTree(display, root(), &ignored, &ignored, &windows, &count);
    for (unsigned i = 0; i < count; ++i) {
        XWindowAttributes window;
        if (!XGetWindowAttributes(display, windows[i], &window)) continue;
        viewable += window.map_state == IsViewable && window.c_class == InputOutput;
    }
    XFree(windows);
    EXPECT_EQ(viewable, 1u);
}

TEST_F(ShownMenu, OpensWhatIsPickedWithTheKeyboard) {
    const test::RecordingProgram program({"text/plain"});
    const std::string file = folder.file("top/note.txt", "text\n");
    RunningCommand command({"menu", "--at", "200,150", folder.path("top")});
    ASSERT_TRUE(wait_until_open());
    press("Down Right");
    press("Down Return");
    EXPECT_EQ(command.finish().status, 0);
    EXPECT_EQ(program.wait(), Paths({file}));
}

TEST_F(ShownMenu, ShowsAPanelWhenAnActionFails) {
    RunningCommand command({"menu", "--at", "200,150", "/proc/version"});
    ASSERT_TRUE(wait_until_open());
    press("Up Return");
    ASSERT_TRUE(wait_for([&] { return !is_grabbed(); }));
    EXPECT_TRUE(
        wait_for([] { return !output_of("xdotool search --onlyvisible --name .").empty(); }));
    command.send_signal(SIGTERM);
    const Outcome outcome = command.finish();
    EXPECT_EQ(outcome.status, 128 + SIGTERM);
    EXPECT_NE(outcome.err.find("\"/proc/version\" was left where it is"), std::string::npos);
}

TEST_F(ShownMenu, ClosesAndLetsGoAtASignal) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        RunningCommand command({"menu", "--at", "200,150", folder.path()});
        ASSERT_TRUE(wait_until_open());
        command.send_signal(number);
        const Outcome outcome = command.finish();
        EXPECT_EQ(outcome.status, 128 + number);
        EXPECT_EQ(outcome.err, "");
        EXPECT_FALSE(is_grabbed());
    }
}

TEST_F(ShownMenu, TakesItsOwnDisplayAlongAtASignal) {
    RunningCommand command({"menu", "--json", "--depth", "1000", "/usr"}, {{"DISPLAY", ""}});
    std::vector<pid_t> children;
    ASSERT_TRUE(wait_for([&] {
        children = children_of(command.process());
        return !children.empty();
    }));
    command.send_signal(SIGTERM);
    EXPECT_EQ(command.finish().status, 128 + SIGTERM);
    EXPECT_TRUE(wait_for([&] { return kill(children[0], 0) != 0; }));
}

TEST_F(ShownMenu, EndsAtASignalWhileTheToolkitConnectsToTheDisplay) {
    // The command asks first whether the display answers; the toolkit's connection comes second.
    const test::SlowDisplay slow(2);
    RunningCommand command({"menu", folder.path()}, {{"DISPLAY", slow.name()}});
    ASSERT_TRUE(wait_for([&] { return slow.is_waited_for(); }));
    command.send_signal(SIGTERM);
    const Outcome outcome = command.finish();
    EXPECT_EQ(outcome.status, 128 + SIGTERM) << outcome.err;
}

TEST_F(ShownMenu, CopiesThePathsForOthersToPaste) {
    const std::string one = folder.file("one \xc3\xa4.txt"), two = folder.file("two");
    const Outcome outcome = run_delvio({"menu", "--pick", "Copy Path", one, two});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(output_of("timeout 10 xclip -o -selection clipboard"), one + "\n" + two);
    EXPECT_NE(output_of("timeout 10 xclip -o -selection clipboard -t TARGETS").find("UTF8_STRING"),
              std::string::npos);
}

TEST_F(ShownMenu, CopiesControlCharactersAsEscapesThatAShellReads) {
    const std::string file = folder.file("it's\na \x1b[31m\\ \xc3\xa4.txt", "found");
    ASSERT_EQ(run_delvio({"menu", "--pick", "Copy Path", file}).status, 0);
    const std::string copied = output_of("timeout 10 xclip -o -selection clipboard");
    EXPECT_EQ(copied.find_first_of("\n\x1b"), std::string::npos) << copied;
    EXPECT_EQ(output_of("bash " + folder.file("script", "cat " + copied)), "found");
}

TEST_F(ShownMenu, KeepsTheClipboardUntilSomethingElseIsCopied) {
    const Atom clipboard = XInternAtom(display, "CLIPBOARD", False);
    run_delvio({"menu", "--pick", "Copy Path", folder.path()});
    const Window owner = XGetSelectionOwner(display, clipboard);
    ASSERT_NE(owner, static_cast<Window>(None));
    const Window own = XCreateSimpleWindow(display, root(), 0, 0, 1, 1, 0, 0, 0);
    XSetSelectionOwner(display, clipboard, own, CurrentTime);
    EXPECT_EQ(XGetSelectionOwner(display, clipboard), own);
    // The keeper ends, and its window goes too.
    XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    EXPECT_TRUE(wait_for([&] {
        XWindowAttributes ignored;
        return !XGetWindowAttributes(display, owner, &ignored);
    }));
    XSetErrorHandler(nullptr);
}

TEST_F(ShownMenu, CannotCopyWithoutADisplay) {
    const Outcome outcome =
        run_delvio({"menu", "--pick", "Copy Path", folder.path()}, {{"DISPLAY", ""}});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("clipboard"), std::string::npos);
}

}  // namespace
