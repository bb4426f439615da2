// The menu in sway, which offers layers: real keys and clicks, two outputs.
#include <host/menu_stage.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <algorithm>

#include "support/heap.h"
#include "support/recording_program.h"
#include "wayland/wayland_scene.h"

namespace {

using test::Level;
using test::NativeWindow;
using test::wait_for;

constexpr int first_row = 16;  // from a level's top
constexpr int row_height = 24;

// A program of the session that ends with the object.
class SessionProgram {
  public:
    SessionProgram(const test::Changes& environment, const std::function<int()>& work)
        : process_(fork()) {
        if (process_ != 0) return;
        for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
        _exit(work());
    }
    ~SessionProgram() {
        if (process_ > 0) kill(process_, SIGKILL);
        finish();
    }
    SessionProgram(const SessionProgram&) = delete;
    SessionProgram& operator=(const SessionProgram&) = delete;

    // The exit status.
    int finish() {
        int status = 0;
        if (process_ > 0) waitpid(process_, &status, 0);
        process_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t process_;
};

struct SwayMenu : test::WaylandScene {
    static void SetUpTestSuite() {
        compositor = std::make_unique<test::Compositor>();
        if (!compositor->start_sway(2)) {
            ADD_FAILURE() << "sway did not start: " << compositor->log();
            compositor.reset();
        }
    }

    void SetUp() override {
        WaylandScene::SetUp();
        if (HasFatalFailure()) return;
        ASSERT_TRUE(wait_for([] { return test::place_side_by_side(2, 800); }));
        folder.file("top/alpha.txt", "a");
        folder.file("top/beta.txt", "b");
    }
    void TearDown() override {
        WaylandScene::TearDown();
        if (compositor) use_scale("1");
    }

    std::string top() const { return folder.path("top"); }
    void use_scale(const std::string& scale) {
        EXPECT_TRUE(compositor->tell_sway("output X11-1 scale " + scale));
        EXPECT_TRUE(compositor->tell_sway("output X11-2 scale " + scale));
        set_scale(std::stod(scale));
    }
    void expect_level_at(int x, int y) {
        const std::vector<Level> all = levels();
        ASSERT_FALSE(all.empty());
        EXPECT_NEAR(all[0].x, x, 3);
        EXPECT_NEAR(all[0].y, y, 3);
        EXPECT_TRUE(shows_menu_at(all[0]));
    }
    // Opens the folder's level by the pointer and picks its first file.
    void pick_by_pointer(const std::string& expected) {
        test::RecordingProgram program({"text/plain"});
        ASSERT_TRUE(highlight(0, 60, first_row));
        ASSERT_TRUE(highlight(1, 60, first_row));
        input.click(1);
        EXPECT_EQ(finish().status, 0);
        EXPECT_EQ(program.wait(), std::vector<std::string>{expected});
    }
};

TEST_F(SwayMenu, StandsAtThePointerThoughNoMotionTellsIt) {
    rest_at(300, 250);
    ASSERT_TRUE(open_menu({top()}));
    expect_level_at(300, 250);
    input.key("Escape");
    EXPECT_EQ(finish().status, 0);
}

TEST_F(SwayMenu, IsWalkedThroughAndPickedFromByKeysAlone) {
    test::RecordingProgram program({"text/plain"});
    rest_at(100, 100);
    ASSERT_TRUE(open_menu({top()}));
    for (const char* key : {"t", "o", "p", "Right"}) input.key(key);
    ASSERT_TRUE(wait_for_levels(2));
    for (const char* key : {"Down", "Return"}) input.key(key);
    EXPECT_EQ(finish().status, 0);
    EXPECT_EQ(program.wait(), std::vector<std::string>{folder.path("top/beta.txt")});
}

TEST_F(SwayMenu, RepeatsAHeldKey) {
    for (int i = 0; i < 40; i++) folder.file("many/f" + std::to_string(100 + i) + ".txt", "x");
    test::RecordingProgram program({"text/plain"});
    rest_at(100, 100);
    ASSERT_TRUE(open_menu({folder.path("many")}));
    for (const char* key : {"m", "a", "n", "y", "Right"}) input.key(key);
    ASSERT_TRUE(wait_for_levels(2));
    const Level level = levels()[1];
    // The highlight leaves the first row and comes to the tenth.
    input.key_down("Down");
    const int tenth = level.y + first_row + 9 * row_height;
    const unsigned long plain = input.pixel(level.x + level.width - 12, tenth);
    EXPECT_TRUE(wait_for([&] { return input.pixel(level.x + level.width - 12, tenth) != plain; }));
    input.key_up("Down");
    input.key("Escape");
    EXPECT_EQ(finish().status, 0);
}

TEST_F(SwayMenu, IsBrowsedByThePointerAlone) {
    rest_at(120, 130);
    ASSERT_TRUE(open_menu({top()}));
    pick_by_pointer(folder.path("top/alpha.txt"));
}

TEST_F(SwayMenu, AClickElsewhereClosesItAndIsNobodysElse) {
    NativeWindow window(folder.path("events"), compositor->environment());
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    rest_at(300, 250);
    ASSERT_TRUE(open_menu({top()}));
    EXPECT_TRUE(wait_for([&] { return !window.has_focus(); }));
    rest_at(60, 700);
    input.click(1);
    EXPECT_EQ(finish().status, 0);
    EXPECT_TRUE(wait_for([&] { return window.has_focus(); })) << "the keyboard goes back";
    EXPECT_FALSE(window.has("press"));
    input.click(1);
    EXPECT_TRUE(wait_for([&] { return window.has("press"); }));
}

// A window that fills the screen hides the panels and what else is in their layers.
struct SwayMenuOverAFullScreen : SwayMenu {
    void SetUp() override {
        SwayMenu::SetUp();
        if (HasFatalFailure()) return;
        window_ = std::make_unique<NativeWindow>(folder.path("events"), compositor->environment());
        ASSERT_TRUE(wait_for([&] { return window_->has_focus(); }));
        ASSERT_TRUE(compositor->tell_sway("[title=native] fullscreen enable"));
        ASSERT_TRUE(wait_for([&] { return window_->has("full screen"); }));
    }
    void TearDown() override {
        window_.reset();
        SwayMenu::TearDown();
    }
    std::unique_ptr<NativeWindow> window_;
};

TEST_F(SwayMenuOverAFullScreen, StandsAtThePointerAndIsBrowsedByIt) {
    rest_at(300, 250);
    ASSERT_TRUE(open_menu({top()}));
    expect_level_at(300, 250);
    pick_by_pointer(folder.path("top/alpha.txt"));
    EXPECT_FALSE(window_->has("press"));
}

TEST_F(SwayMenuOverAFullScreen, ClosesAtAClickElsewhereThatIsNobodysElse) {
    rest_at(300, 250);
    ASSERT_TRUE(open_menu({top()}));
    rest_at(60, 700);
    input.click(1);
    EXPECT_EQ(finish().status, 0);
    EXPECT_TRUE(wait_for([&] { return window_->has_focus(); })) << "the keyboard goes back";
    EXPECT_FALSE(window_->has("press"));
    input.click(1);
    EXPECT_TRUE(wait_for([&] { return window_->has("press"); }));
}

TEST_F(SwayMenu, KeysReachNoOtherProgramWhileItIsOpen) {
    NativeWindow window(folder.path("events"), compositor->environment());
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    rest_at(300, 250);
    ASSERT_TRUE(open_menu({top()}));
    for (const char* key : {"x", "Down", "Escape"}) input.key(key);
    EXPECT_EQ(finish().status, 0);
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    input.key("z");
    EXPECT_TRUE(wait_for([&] { return window.has("key z"); }));
    EXPECT_FALSE(window.has("key x"));
    EXPECT_FALSE(window.has("key Escape"));
}

TEST_F(SwayMenu, AProgramThatHangsBeforeItsMenuGivesTheKeyboardBack) {
    NativeWindow window(folder.path("events"), compositor->environment());
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    const SessionProgram hanging(compositor->environment(), [] {
        const PreparedMenuStage stage;
        int x, y;
        stage.pointer(&x, &y);
        return pause();
    });
    ASSERT_TRUE(wait_for([&] { return window.has("blur"); })) << "the stage takes it";
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    input.key("z");
    EXPECT_TRUE(wait_for([&] { return window.has("key z"); }));
}

TEST_F(SwayMenu, ClosedStagesLeaveNoMemoryBehind) {
    SessionProgram program(compositor->environment(), [] {
        const auto open_and_close = [](int times) {
            int found = 0, x, y;
            for (int i = 0; i < times; i++) found += PreparedMenuStage().pointer(&x, &y);
            return found;
        };
        constexpr int first = 5, more = 20;
        constexpr size_t bytes_a_stage = 100;
        if (open_and_close(first) == 0) return 2;
        const size_t before = test::memory_in_use();
        if (open_and_close(more) == 0) return 2;
        return test::memory_in_use() > before + more * bytes_a_stage ? 1 : 0;
    });
    EXPECT_EQ(program.finish(), 0);
}

TEST_F(SwayMenu, HeldKeysChooseAlternates) {
    rest_at(100, 100);
    ASSERT_TRUE(open_menu({top()}));
    const int plain = levels()[0].height;
    EXPECT_EQ(levels()[0].width > 0, true);
    input.key("Escape");
    EXPECT_EQ(finish().status, 0);
    input.key_down("Shift_L");
    ASSERT_TRUE(open_menu({top()}));
    EXPECT_LT(levels()[0].height, plain) << "with Shift it has only the command's own items";
    input.key_up("Shift_L");
    input.key("Escape");
    EXPECT_EQ(finish().status, 0);
}

TEST_F(SwayMenu, StandsOnTheSecondOutput) {
    rest_at(1100, 300);
    ASSERT_TRUE(open_menu({top()}));
    expect_level_at(1100, 300);
    pick_by_pointer(folder.path("top/alpha.txt"));
}

TEST_F(SwayMenu, StaysOnTheOutputOfThePointer) {
    rest_at(790, 300);
    ASSERT_TRUE(open_menu({top()}));
    const Level level = levels().at(0);
    EXPECT_LE(level.x + level.width, 800);
    input.key("Escape");
    EXPECT_EQ(finish().status, 0);
}

TEST_F(SwayMenu, StandsAtThePointerAtTwiceTheScale) {
    use_scale("2");
    rest_at(200, 160);
    ASSERT_TRUE(open_menu({top()}));
    expect_level_at(100, 80);
    pick_by_pointer(folder.path("top/alpha.txt"));
}

TEST_F(SwayMenu, StandsAtThePointerAtOneAndAHalfTimesTheScale) {
    use_scale("1.5");
    rest_at(180, 150);
    ASSERT_TRUE(open_menu({top()}));
    expect_level_at(120, 100);
    pick_by_pointer(folder.path("top/alpha.txt"));
}

TEST_F(SwayMenu, TheWheelScrollsALongLevel) {
    for (int i = 0; i < 60; i++) folder.file("many/f" + std::to_string(100 + i) + ".txt", "x");
    test::RecordingProgram program({"text/plain"});
    rest_at(100, 100);
    ASSERT_TRUE(open_menu({folder.path("many")}));
    ASSERT_TRUE(highlight(0, 60, first_row));
    ASSERT_TRUE(wait_for_levels(2));
    ASSERT_TRUE(highlight(1, 60, 10 * row_height));
    const Level level = levels()[1];
    const auto shown = [&] {
        return input.pixels(level.x + 40, level.y + 100, level.width - 80, level.height - 200);
    };
    const std::vector<unsigned long> before = shown();
    input.click(5);
    EXPECT_TRUE(wait_for([&] { return shown() != before; }));
    input.key("Escape");
    EXPECT_EQ(finish().status, 0);
}

TEST_F(SwayMenu, AButtonPressedOnOneRowAndReleasedOnAnotherPicksThere) {
    test::RecordingProgram program({"text/plain"});
    rest_at(120, 130);
    ASSERT_TRUE(open_menu({top()}));
    ASSERT_TRUE(highlight(0, 60, first_row));
    ASSERT_TRUE(wait_for_levels(2));
    input.press(1);
    ASSERT_TRUE(highlight(1, 60, first_row + row_height));
    input.release(1);
    EXPECT_EQ(finish().status, 0);
    EXPECT_EQ(program.wait(), std::vector<std::string>{folder.path("top/beta.txt")});
}

// Files dragged out of the menu to other programs.
struct SwayDrag : SwayMenu {
    // Opens a menu at a place of the screen and drags its first file to the bottom of the output,
    // with the button down.
    void drag_from(int x, int y) {
        rest_at(x, y);
        ASSERT_TRUE(open_menu({top()}));
        ASSERT_TRUE(highlight(0, 60, first_row));
        ASSERT_TRUE(highlight(1, 60, first_row));
        input.key_down("Super_L");
        input.press(1);
        ASSERT_TRUE(wait_for_levels(0));
    }
    // Moves to and fro at the drop's place until the program has noticed the drag.
    void move_over(const NativeWindow& window, int x, int y) {
        ASSERT_TRUE(wait_for([&] {
            rest_at(x, y);
            return window.has("over");
        }));
        EXPECT_TRUE(window.has("offers copy"));
    }
    // Whether something is painted around the pointer, where all was of one colour.
    bool shows_picture_at(int x, int y) {
        const std::vector<unsigned long> seen = input.pixels(x - 16, y - 16, 64, 64);
        return std::any_of(seen.begin(), seen.end(),
                           [&](unsigned long pixel) { return pixel != seen[0]; });
    }
    void let_go() {
        input.release(1);
        input.key_up("Super_L");
    }
    std::string dropped() const { return "got file://" + folder.path("top/alpha.txt"); }
    void drop_on(NativeWindow::Protocol protocol) {
        NativeWindow window(folder.path("events"), compositor->environment(), protocol);
        ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
        drag_from(300, 250);
        move_over(window, 100, 700);
        EXPECT_TRUE(wait_for([&] { return shows_picture_at(100, 700); }));
        let_go();
        EXPECT_TRUE(wait_for([&] { return window.has(dropped()); }));
        EXPECT_EQ(finish().status, 0);
        EXPECT_EQ(window.count(dropped()), 1);
        EXPECT_FALSE(window.has("press"));
        EXPECT_TRUE(wait_for([&] { return window.has_focus(); })) << "the keyboard goes back";
        EXPECT_EQ(test::read_file(folder.path("top/alpha.txt")), "a");
    }
};

TEST_F(SwayDrag, AFileIsDroppedOnAWaylandProgram) { drop_on(NativeWindow::wayland); }

TEST_F(SwayDrag, AFileIsDroppedOnAnXProgram) { drop_on(NativeWindow::x11); }

TEST_F(SwayDrag, AFileIsDroppedAtOneAndAHalfTimesTheScale) {
    use_scale("1.5");
    drop_on(NativeWindow::wayland);
}

TEST_F(SwayDrag, AFileIsDroppedOnTheSecondOutput) {
    ASSERT_TRUE(compositor->tell_sway("focus output X11-2"));
    NativeWindow window(folder.path("events"), compositor->environment());
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    drag_from(1100, 250);
    move_over(window, 900, 700);
    let_go();
    EXPECT_TRUE(wait_for([&] { return window.has(dropped()); }));
    EXPECT_EQ(finish().status, 0);
    EXPECT_TRUE(compositor->tell_sway("focus output X11-1"));
}

TEST_F(SwayDrag, ADropOnNothingEndsIt) {
    drag_from(300, 250);
    rest_at(100, 700);
    EXPECT_TRUE(wait_for([&] { return shows_picture_at(100, 700); }));
    let_go();
    EXPECT_EQ(finish().status, 0);
}

TEST_F(SwayDrag, AProgramThatIsLeftGetsNothing) {
    NativeWindow window(folder.path("events"), compositor->environment());
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    ASSERT_TRUE(compositor->tell_sway("[title=native] floating enable"));
    drag_from(300, 250);
    move_over(window, 400, 400);
    rest_at(100, 700);
    ASSERT_TRUE(wait_for([&] { return window.has("left"); }));
    let_go();
    EXPECT_EQ(finish().status, 0);
    EXPECT_FALSE(window.has(dropped()));
}

TEST_F(SwayDrag, APressThatIsLetGoAtOnceDropsNothing) {
    NativeWindow window(folder.path("events"), compositor->environment());
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    rest_at(300, 250);
    ASSERT_TRUE(open_menu({top()}));
    ASSERT_TRUE(highlight(0, 60, first_row));
    ASSERT_TRUE(highlight(1, 60, first_row));
    input.key_down("Super_L");
    input.click(1);
    ASSERT_TRUE(wait_for_levels(0));
    input.key_up("Super_L");
    EXPECT_EQ(finish().status, 0);
    EXPECT_TRUE(wait_for([&] { return window.has_focus(); }));
    EXPECT_FALSE(window.has(dropped()));
    EXPECT_FALSE(window.has("press"));
}

TEST_F(SwayMenu, TheSettingsWindowComesToTheFrontWhenItIsAskedForAgain) {
    NativeWindow window(folder.path("events"), compositor->environment());
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    test::RunningCommand settings({"settings"}, compositor->environment());
    ASSERT_TRUE(wait_for([&] { return window.has("blur") && !window.has_focus(); }));
    ASSERT_TRUE(wait_for(
        [&] { return compositor->tell_sway("[title=native] focus") && window.has_focus(); }));
    const test::Outcome again = test::run_delvio({"settings"}, compositor->environment());
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_TRUE(wait_for([&] { return !window.has_focus(); }));
    settings.send_signal(SIGTERM);
    EXPECT_EQ(settings.finish().status, 128 + SIGTERM);
}

TEST_F(SwayMenu, CopyPathReachesWaylandPrograms) {
    NativeWindow window(folder.path("events"), compositor->environment());
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    rest_at(700, 300);
    ASSERT_TRUE(open_menu({top()}));
    for (const char* key : {"c", "o", "p", "Return"}) input.key(key);
    EXPECT_EQ(finish().status, 0);
    EXPECT_TRUE(wait_for([&] { return window.has("pasted " + top()); }));
}

}  // namespace
