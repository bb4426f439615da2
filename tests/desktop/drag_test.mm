// Files dragged out of the open menu onto other programs, by hand.
#include <AppKit/AppKit.h>
#include <GNUstepGUI/GSDragView.h>
#include <gtest/gtest.h>

#include "desktop/desk.h"
#include "desktop/drop_target.h"
#include "support/announced_window.h"
#include "support/pasteboard_server.h"

namespace {

using test::DropTarget;
using test::Steps;
using Titles = std::vector<std::string>;

constexpr char command_key[] = "Super_L";
constexpr int target_x = 900, target_y = 500;

class Drag : public test::Desk {
  protected:
    void SetUp() override {
        set_preference("logLevel", "2");
        folder_.file("project/docs/chapters/one and \xC3\xA9.txt", "1");
        folder_.file("project/docs/chapters/two.txt", "2");
        folder_.file("project/readme.txt", "r");
        select({folder_.path("project"), folder_.file("plain.txt", "p")});
    }
    void TearDown() override { set_preference("logLevel", "0"); }

    static bool is_dragging() {
        Class view = NSClassFromString(@"XGDragView");
        return [[view sharedDragView] isDragging];
    }
    static size_t intercepted() {
        return log_lines("Delvio: Intercepting left mouse down event").size();
    }
    // Presses on the last row of `path` with Command and keeps the button down.
    void press(Steps& steps, const Titles& path, bool lets_key_go = true) {
        hover_along(steps, path);
        steps.when(
            "highlight", [this, path] { return highlighted(path.size() - 1) == path.back(); },
            [this] {
                input().key_down(command_key);
                input().press(1);
            });
        steps.when(
            "the drag", [] { return is_dragging(); },
            [this, lets_key_go] {
                if (lets_key_go) input().key_up(command_key);
            });
    }
    void move_over(Steps& steps, DropTarget& target) {
        steps.when(
            "the target", [&] { return target.has("ready"); },
            [this] { input().move(target_x + 20, target_y + 20); });
        steps.when(
            "the target's notice", [&] { return target.has("over"); },
            [this] { input().move(target_x + 60, target_y + 60); });
    }
    // Releases the button once the target has said whether it takes the files.
    void let_go(Steps& steps) {
        steps.when(
            "the drag", [] { return is_dragging(); }, [this] { input().release(1); });
        steps.when("its end", [] { return !is_dragging(); });
    }
    std::string address(const std::string& path) {
        NSString* text = [NSString stringWithUTF8String:folder_.path(path).c_str()];
        std::string address = [[[NSURL fileURLWithPath:text] absoluteString] UTF8String];
        if (address.back() == '/') address.pop_back();
        return address;
    }
};

}  // namespace

TEST_F(Drag, AFileThreeLevelsDownIsDroppedOnAnotherProgram) {
    DropTarget target(folder_.path("drops"), target_x, target_y);
    pop_up([&](Steps& steps) {
        press(steps, {"project", "docs", "chapters", "one and \xC3\xA9.txt"});
        move_over(steps, target);
        let_go(steps);
        steps.when("the drop", [&] { return !target.drops().empty(); });
    });
    EXPECT_EQ(target.drops(), Titles({address("project/docs/chapters/one and \xC3\xA9.txt")}));
    EXPECT_FALSE(is_open(0));
    EXPECT_TRUE(program().opened().empty()) << "the press was no pick";
}

TEST_F(Drag, CommandMayBeHeldUntilTheDrop) {
    DropTarget target(folder_.path("drops"), target_x, target_y);
    pop_up([&](Steps& steps) {
        press(steps, {"project", "readme.txt"}, false);
        move_over(steps, target);
        let_go(steps);
        steps.when("the drop", [&] { return !target.drops().empty(); });
    });
    EXPECT_EQ(target.drops(), Titles({address("project/readme.txt")}));
}

TEST_F(Drag, FilesAreDroppedThoughThePasteboardsServerDoesNotAnswer) {
    DropTarget target(folder_.path("drops"), target_x, target_y);
    test::PasteboardServer server;
    ASSERT_NE(server.process(), 0);
    server.stand_still();
    pop_up([&](Steps& steps) {
        press(steps, {"project", "readme.txt"});
        move_over(steps, target);
        let_go(steps);
        steps.when("the drop", [&] { return !target.drops().empty(); });
    });
    EXPECT_EQ(target.drops(), Titles({address("project/readme.txt")}));
}

TEST_F(Drag, AFolderIsDraggedToo) {
    DropTarget target(folder_.path("drops"), target_x, target_y);
    pop_up([&](Steps& steps) {
        press(steps, {"project", "docs"});
        move_over(steps, target);
        let_go(steps);
        steps.when("the drop", [&] { return !target.drops().empty(); });
    });
    EXPECT_EQ(target.drops(), Titles({address("project/docs")}));
}

TEST_F(Drag, ATargetThatTakesOtherTypesGetsNothing) {
    DropTarget target(folder_.path("drops"), target_x, target_y, "image/png");
    pop_up([&](Steps& steps) {
        press(steps, {"project", "readme.txt"});
        steps.when(
            "the target", [&] { return target.has("ready"); },
            [this] { input().move(target_x + 20, target_y + 20); });
        let_go(steps);
    });
    EXPECT_TRUE(target.drops().empty());
}

TEST_F(Drag, EscapeEndsItAndTheTargetIsLeftWithoutADrop) {
    DropTarget target(folder_.path("drops"), target_x, target_y);
    pop_up([&](Steps& steps) {
        press(steps, {"project", "readme.txt"});
        move_over(steps, target);
        steps.when(
            "over", [&] { return target.has("over"); }, [this] { escape(); });
        steps.when("its end", [] { return !is_dragging(); });
        steps.when(
            "left", [&] { return target.has("left"); }, [this] { input().release(1); });
    });
    EXPECT_TRUE(target.drops().empty());
    EXPECT_TRUE(input().pointer_is_free());
    EXPECT_TRUE(program().opened().empty());
}

TEST_F(Drag, EscapeEndsItOverNothingAndLeavesTheKeyToOthers) {
    pop_up([&](Steps& steps) {
        press(steps, {"project", "readme.txt"});
        steps.when(
            "the drag", [] { return is_dragging(); },
            [this] {
                input().move(1000, 700);
                escape();
            });
        steps.when(
            "its end", [] { return !is_dragging(); }, [this] { input().release(1); });
    });
    // The next menu's.
    walk({});
    EXPECT_FALSE(is_open(0));
}

TEST_F(Drag, TheDraggedImageIsNoWindowOfTheWindowManagers) {
    std::vector<test::AnnouncedWindow> shown;
    const auto image_is_shown = [&] {
        shown = test::announced_windows();
        std::erase_if(shown, [](const auto& each) { return each.title != "Dragged Image"; });
        return !shown.empty();
    };
    pop_up([&](Steps& steps) {
        press(steps, {"project", "readme.txt"});
        steps.when("the image", image_is_shown, [this] { input().move(1000, 700); });
        steps.when("the image elsewhere", image_is_shown);
        let_go(steps);
    });
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].type, "_NET_WM_WINDOW_TYPE_DND");
    EXPECT_TRUE(shown[0].is_unmanaged);
}

TEST_F(Drag, ADropOnNothingEnds) {
    pop_up([&](Steps& steps) {
        press(steps, {"project", "readme.txt"});
        steps.when(
            "the drag", [] { return is_dragging(); }, [this] { input().move(1000, 700); });
        let_go(steps);
    });
    EXPECT_FALSE(is_dragging());
    EXPECT_TRUE(input().pointer_is_free());
}

TEST_F(Drag, ATargetThatIsLeftGetsNothing) {
    DropTarget target(folder_.path("drops"), target_x, target_y);
    pop_up([&](Steps& steps) {
        press(steps, {"project", "readme.txt"});
        move_over(steps, target);
        steps.when(
            "over", [&] { return target.has("over"); }, [this] { input().move(700, 700); });
        steps.when("left", [&] { return target.has("left"); });
        let_go(steps);
    });
    EXPECT_TRUE(target.drops().empty());
}

TEST_F(Drag, APressThatIsLetGoAtOnceDropsNothing) {
    const size_t before = log_lines("Delvio: Starting drag..").size();
    pop_up([&](Steps& steps) {
        hover_along(steps, {"project", "readme.txt"});
        steps.when(
            "highlight", [this] { return highlighted(1) == "readme.txt"; },
            [this] {
                input().key_down(command_key);
                input().click(1);
            });
        steps.when(
            "the start", [&] { return log_lines("Delvio: Starting drag..").size() > before; },
            [this] { input().key_up(command_key); });
    });
    EXPECT_FALSE(is_dragging());
    EXPECT_TRUE(program().opened().empty());
}

TEST_F(Drag, APressWithoutCommandPicks) {
    const size_t before = intercepted();
    pick({"project", "readme.txt"});
    EXPECT_EQ(program().wait(), Titles({folder_.path("project/readme.txt")}));
    EXPECT_EQ(intercepted(), before);
}

TEST_F(Drag, ACommandPressOnAMoveRowIsTheMenus) {
    const size_t before = log_lines("Delvio: Initiating drag").size();
    Titles shown;
    pop_up([&](Steps& steps) {
        hover_along(steps, {"project"});
        steps.when(
            "the level", [this] { return is_open(1); },
            [&] {
                shown = titles(1);
                hover("Move selection here");
            });
        steps.when(
            "highlight", [this] { return highlighted(1) == "Move selection here"; },
            [this] {
                input().key_down(command_key);
                input().press(1);
            });
        steps.when(
            "the press",
            [] { return !log_lines("Delvio: Open with elem: 0 Move-copy-elem: 4").empty(); },
            [this] {
                // The button is released where no row is picked.
                input().move(1200, 780);
                input().release(1);
                input().key_up(command_key);
            });
    });
    EXPECT_EQ(log_lines("Delvio: Initiating drag").size(), before);
}

TEST_F(Drag, ACommandPressOnTheHostsRowIsTheMenus) {
    const size_t before = log_lines("Delvio: Initiating drag").size();
    pop_up([&](Steps& steps) {
        steps.when(
            "the menu", [this] { return is_open(0); }, [this] { hover("Get Info"); });
        steps.when(
            "highlight", [this] { return highlighted(0) == "Get Info"; },
            [this] {
                input().key_down(command_key);
                input().click(1);
                input().key_up(command_key);
            });
    });
    EXPECT_EQ(count_messages("picked Get Info"), 1);
    EXPECT_EQ(log_lines("Delvio: Initiating drag").size(), before);
}

TEST_F(Drag, TheTapIsOffWhileNoMenuIsOpen) {
    walk({});
    const Titles states = log_lines("Delvio: Event tap status");
    ASSERT_GE(states.size(), 2u);
    EXPECT_EQ(states[states.size() - 2], "Delvio: Event tap status: 1");
    EXPECT_EQ(states.back(), "Delvio: Event tap status: 0");
    const size_t before = intercepted();
    test::Steps steps;
    steps.when(
        "the window", [] { return true; },
        [this] {
            input().key_down(command_key);
            input().move(300, 350);
            input().click(1);
            input().key_up(command_key);
            input().click(3);
        });
    steps.when(
        "a menu", [this] { return is_open(0); }, [this] { escape(); });
    steps.run();
    EXPECT_EQ(intercepted(), before);
}
