// The main job on the screen: a right-click, levels that open under the pointer, and opening a
// file.
#include <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "desktop/desk.h"

namespace {

using test::Steps;
using Titles = std::vector<std::string>;

class Browse : public test::Desk {
  protected:
    void SetUp() override {
        folder_.file("project/docs/chapters/one.txt", "1");
        folder_.file("project/docs/chapters/two.txt", "2");
        folder_.folder("project/build");
        folder_.file("project/readme.txt", "r");
        select({folder_.path("project")});
    }
};

}  // namespace

TEST_F(Browse, ARightClickShowsThePlugInsItemsAboveTheHosts) {
    EXPECT_EQ(walk({}), Titles({"project", "-", "Open", "Get Info", "Duplicate"}));
}

TEST_F(Browse, HoveringOpensThreeLevelsDownAndAFilePickedThereOpensWithTheDefaultProgram) {
    pick({"project", "docs", "chapters", "two.txt"});
    EXPECT_EQ(program().wait(), Titles({folder_.path("project/docs/chapters/two.txt")}));
}

TEST_F(Browse, AHostItemPickedReachesTheHost) {
    pick({"Get Info"});
    EXPECT_EQ(messages().back(), "picked Get Info");
}

TEST_F(Browse, ThePointerIsFreeAgainWhenTheMenuHasClosed) {
    bool free_within = true;
    pop_up([&](Steps& steps) {
        steps.when(
            "the menu", [&] { return is_open(0); },
            [&] {
                free_within = input().pointer_is_free();
                escape();
            });
    });
    EXPECT_FALSE(free_within);
    EXPECT_TRUE(input().pointer_is_free());
}

TEST_F(Browse, ShiftHeldAtThePopupGivesThePlainHostMenu) {
    input().key_down("Shift_L");
    const Titles shown = walk({});
    input().key_up("Shift_L");
    EXPECT_EQ(shown, host_titles());
}

TEST_F(Browse, SwitchedOffThePlugInLeavesTheHostsMenuAlone) {
    set_preference("delvio_is_on", "0");
    const Titles shown = walk({});
    set_preference("delvio_is_on", "1");
    EXPECT_EQ(shown, host_titles());
}

TEST_F(Browse, ASettingWrittenByAnotherProgramHoldsFromTheNextMenuOn) {
    folder_.file("project/A.txt");
    const Titles grouped = walk({"project"});
    set_preference("sort_order", "1");
    const Titles mixed = walk({"project"});
    set_preference("sort_order", "0");
    EXPECT_EQ(grouped, Titles({"build", "docs", "-", "A.txt", "readme.txt"}));
    EXPECT_EQ(mixed, Titles({"A.txt", "build", "docs", "readme.txt"}));
}

TEST_F(Browse, TheHostsDelegateIsAskedAboutItsMenuAndToldOfHighlightsOfThePlugInsItems) {
    pop_up([&](Steps& steps) {
        steps
            .when(
                "the menu", [&] { return is_open(0); }, [&] { hover("Get Info"); })
            .when(
                "its highlight", [&] { return highlighted(0) == "Get Info"; },
                [&] { hover("project"); })
            .when(
                "the level", [&] { return is_open(1); }, [&] { hover("readme.txt"); })
            .when(
                "its highlight", [&] { return highlighted(1) == "readme.txt"; }, [&] { escape(); });
    });
    ASSERT_FALSE(messages().empty());
    EXPECT_EQ(messages().front(), "menuNeedsUpdate:");
    EXPECT_EQ(count_messages("highlight Get Info"), 0);
    EXPECT_GE(count_messages("highlight project"), 1);
    EXPECT_GE(count_messages("highlight readme.txt"), 1);
    EXPECT_EQ(count_messages("menuDidClose:"), 1);
}

TEST_F(Browse, RemovingAllItemsOfTheOpenMenuBringsThePlugInsBack) {
    Titles shown;
    pop_up([&](Steps& steps) {
        steps
            .when(
                "the menu", [&] { return is_open(0); }, [&] { [[window() menu] removeAllItems]; })
            .when(
                "the host's items to go", [&] { return titles(0).size() < 5; },
                [&] {
                    shown = titles(0);
                    [window() rebuildMenu];
                })
            .when(
                "the host's items", [&] { return titles(0).size() == 5; },
                [&] { hover("project"); })
            .when(
                "the level", [&] { return is_open(1); }, [&] { escape(); });
    });
    EXPECT_EQ(shown, Titles({"project", "-"}));
}

TEST_F(Browse, TwoNestedTakeOversFreeTheTreesAtTheSecondRelease) {
    set_preference("logLevel", "2");
    size_t after_first = 0;
    pop_up([&](Steps& steps) {
        steps.when(
            "the menu", [&] { return is_open(0); },
            [&] {
                // A second menu is taken over while this one is open, and released before it.
                id controller =
                    [NSClassFromString(@"DVDelvio") performSelector:@selector(sharedDelvio)];
                NSMenu* other = [[[NSMenu alloc] initWithTitle:@""] autorelease];
                [controller performSelector:@selector(setCurrentMenu:withProxyDelegate:)
                                 withObject:other
                                 withObject:nil];
                [controller performSelector:@selector(removeMenuAndDelegate)];
                after_first = log_lines("Delvio: Free'ing trees").size();
                escape();
            });
    });
    set_preference("logLevel", "0");
    EXPECT_EQ(after_first, 0u);
    EXPECT_EQ(log_lines("Delvio: Free'ing trees").size(), 1u);
}

TEST_F(Browse, AFolderRemovedWhileItsMenuIsOpenLeavesTheMenuUsable) {
    Titles shown;
    pop_up([&](Steps& steps) {
        hover_along(steps, {"project"});
        steps
            .when(
                "the level", [&] { return is_open(1); },
                [&] {
                    std::filesystem::remove_all(folder_.path("project/docs"));
                    hover("docs");
                })
            .when(
                "the removed folder's level", [&] { return is_open(2); },
                [&] {
                    shown = titles(2);
                    hover("readme.txt");
                })
            .when(
                "another row", [&] { return highlighted(1) == "readme.txt"; },
                [&] { click("readme.txt"); });
    });
    EXPECT_EQ(shown, Titles({"Folder is empty"}));
    EXPECT_EQ(program().wait(), Titles({folder_.path("project/readme.txt")}));
}
