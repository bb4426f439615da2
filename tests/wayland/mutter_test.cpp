// The menu in Mutter, which offers no layers: real keys and clicks.
#include <stdlib.h>

#include <algorithm>

#include "support/recording_program.h"
#include "wayland/wayland_scene.h"

namespace {

using test::Level;
using test::NativeWindow;
using test::wait_for;

constexpr int first_row = 16;  // from a level's top

struct MutterMenu : test::WaylandScene {
    static void SetUpTestSuite() {
        // Mutter keeps presses with Super for itself.
        ASSERT_EQ(system("defaults write NSGlobalDomain GSFirstCommandKey Control_L"), 0);
        compositor = std::make_unique<test::Compositor>();
        if (!compositor->start_mutter()) {
            ADD_FAILURE() << "Mutter did not start: " << compositor->log();
            compositor.reset();
        }
    }
    void SetUp() override {
        WaylandScene::SetUp();
        folder.file("top/alpha.txt", "a");
        folder.file("top/beta.txt", "b");
    }
    std::string top() const { return folder.path("top"); }
};

TEST_F(MutterMenu, StandsAtThePointerThoughNoMotionTellsIt) {
    rest_at(700, 300);
    ASSERT_TRUE(open_menu({top()}));
    const Level level = levels().at(0);
    EXPECT_NEAR(level.x, 700, 3);
    EXPECT_NEAR(level.y, 300, 3);
    ASSERT_TRUE(keys_reach_session());
    input.key("Escape");
    EXPECT_EQ(finish().status, 0);
}

TEST_F(MutterMenu, IsWalkedThroughAndPickedFromByKeysAlone) {
    NativeWindow window(folder.path("events"), compositor->environment());
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    test::RecordingProgram program({"text/plain"});
    rest_at(700, 300);
    ASSERT_TRUE(open_menu({top()}));
    ASSERT_TRUE(keys_reach_session());
    for (const char* key : {"t", "o", "p", "Right"}) input.key(key);
    ASSERT_TRUE(wait_for_levels(2));
    for (const char* key : {"Down", "Return"}) input.key(key);
    EXPECT_EQ(finish().status, 0);
    EXPECT_EQ(program.wait(), std::vector<std::string>{folder.path("top/beta.txt")});
    EXPECT_TRUE(wait_for([&] { return window.has_focus(); })) << "the keyboard goes back";
    EXPECT_FALSE(window.has("key t"));
    EXPECT_FALSE(window.has("key Return"));
}

TEST_F(MutterMenu, IsBrowsedByThePointerAlone) {
    test::RecordingProgram program({"text/plain"});
    rest_at(600, 200);
    ASSERT_TRUE(open_menu({top()}));
    ASSERT_TRUE(highlight(0, 60, first_row));
    ASSERT_TRUE(highlight(1, 60, first_row));
    input.click(1);
    EXPECT_EQ(finish().status, 0);
    EXPECT_EQ(program.wait(), std::vector<std::string>{folder.path("top/alpha.txt")});
}

TEST_F(MutterMenu, AClickElsewhereClosesItAndIsNobodysElse) {
    NativeWindow window(folder.path("events"), compositor->environment());
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    rest_at(700, 300);
    ASSERT_TRUE(open_menu({top()}));
    EXPECT_TRUE(wait_for([&] { return !window.has_focus(); }));
    rest_at(1100, 700);
    input.click(1);
    EXPECT_EQ(finish().status, 0);
    EXPECT_TRUE(wait_for([&] { return window.has_focus(); })) << "the keyboard goes back";
    EXPECT_FALSE(window.has("press"));
}

// Files dragged out of the menu to other programs. Mutter places their windows at the upper left.
struct MutterDrag : MutterMenu {
    void drag() {
        rest_at(700, 300);
        ASSERT_TRUE(open_menu({top()}));
        ASSERT_TRUE(keys_reach_session());
        ASSERT_TRUE(highlight(0, 60, first_row));
        ASSERT_TRUE(highlight(1, 60, first_row));
        const Level root = levels().at(0);
        input.key_down("Control_L");
        input.press(1);
        ASSERT_TRUE(wait_for([&] { return !shows_menu_at(root); }));
    }
    void drop_on(NativeWindow::Protocol protocol) {
        NativeWindow window(folder.path("events"), compositor->environment(), protocol);
        ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
        drag();
        // The toolkit looks for a target only where the pointer has moved.
        int turn = 0;
        ASSERT_TRUE(wait_for([&] {
            input.move(170 + turn++ % 20, 180);
            return window.has("over");
        }));
        input.move(180, 180);
        // The pointer's own picture is in the way of its right side.
        EXPECT_TRUE(wait_for([&] {
            const std::vector<unsigned long> seen = input.pixels(166, 166, 12, 12);
            return std::any_of(seen.begin(), seen.end(),
                               [&](unsigned long pixel) { return pixel != seen[0]; });
        })) << "the file's picture is there";
        input.release(1);
        input.key_up("Control_L");
        const std::string dropped = "got file://" + folder.path("top/alpha.txt");
        EXPECT_TRUE(wait_for([&] { return window.has(dropped); }));
        EXPECT_EQ(finish().status, 0);
        EXPECT_FALSE(window.has("press"));
        EXPECT_EQ(test::read_file(folder.path("top/alpha.txt")), "a");
    }
};

TEST_F(MutterDrag, AFileIsDroppedOnAWaylandProgram) { drop_on(NativeWindow::wayland); }

TEST_F(MutterDrag, AFileIsDroppedOnAnXProgram) { drop_on(NativeWindow::x11); }

TEST_F(MutterMenu, CopyPathReachesWaylandPrograms) {
    NativeWindow window(folder.path("events"), compositor->environment());
    ASSERT_TRUE(wait_for([&] { return window.has_focus(); }));
    rest_at(700, 300);
    ASSERT_TRUE(open_menu({top()}));
    ASSERT_TRUE(keys_reach_session());
    for (const char* key : {"c", "o", "p", "Return"}) input.key(key);
    EXPECT_EQ(finish().status, 0);
    EXPECT_TRUE(wait_for([&] { return window.has("pasted " + top()); }));
}

}  // namespace
