// The menu in Mutter, which offers no layers: real keys and clicks.
#include "support/recording_program.h"
#include "wayland/wayland_scene.h"

namespace {

using test::Level;
using test::NativeWindow;
using test::wait_for;

constexpr int first_row = 16;  // from a level's top

struct MutterMenu : test::WaylandScene {
    static void SetUpTestSuite() {
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
