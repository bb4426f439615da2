// The main job on the screen: a right-click, levels that open under the pointer, a file that opens.
#include <AppKit/AppKit.h>
#include <AppKit/MenuTracking.h>
#include <gtest/gtest.h>

#include "desktop/desk.h"

namespace {

using test::Desk;

class Browse : public Desk {
  protected:
    void SetUp() override {
        folder_.file("project/docs/chapters/one.txt", "1");
        folder_.file("project/docs/chapters/two.txt", "2");
        folder_.folder("project/build");
        folder_.file("project/readme.txt", "r");
        select({folder_.path("project")});
    }
};

TEST_F(Browse, ARightClickShowsThePlugInsItemsAboveTheHosts) {
    std::vector<std::string> shown;
    steps()
        .when("the window", [&] { return true; }, [&] { right_click(); })
        .when("the menu", [&] { return is_open(0); }, [&] { shown = titles(0); press_escape(); })
        .when("its end", [&] { return popups() == 1; });
    steps().run();
    EXPECT_EQ(shown, (std::vector<std::string>{"project", "-", "Open", "Get Info", "Duplicate"}));
}

TEST_F(Browse, HoveringOpensThreeLevelsDownAndAFilePickedThereOpensWithTheDefaultProgram) {
    steps()
        .when("the window", [&] { return true; }, [&] { right_click(); })
        .when("the menu", [&] { return is_open(0); }, [&] { hover("project"); })
        .when("the first level", [&] { return is_open(1); }, [&] { hover("docs"); })
        .when("the second level", [&] { return is_open(2); }, [&] { hover("chapters"); })
        .when("the third level", [&] { return is_open(3); }, [&] { click("two.txt"); })
        .when("the end", [&] { return popups() == 1; })
        .when("the opened file", [&] { return !opened().empty(); });
    steps().run();
    EXPECT_EQ(opened(), (std::vector<std::string>{folder_.path("project/docs/chapters/two.txt")}));
}

TEST_F(Browse, AHostItemPickedReachesTheHost) {
    steps()
        .when("the window", [&] { return true; }, [&] { right_click(); })
        .when("the menu", [&] { return is_open(0); }, [&] { click("Get Info"); })
        .when("its end", [&] { return popups() == 1; });
    steps().run();
    EXPECT_EQ(messages().back(), "picked Get Info");
}

TEST_F(Browse, ShiftHeldAtThePopupGivesThePlainHostMenu) {
    std::vector<std::string> shown;
    steps()
        .when("the window", [&] { return true; }, [&] { hold_shift(true); right_click(); })
        .when("the menu", [&] { return is_open(0); }, [&] {
            shown = titles(0);
            hold_shift(false);
            press_escape();
        })
        .when("its end", [&] { return popups() == 1; });
    steps().run();
    EXPECT_EQ(shown, host_titles());
}

TEST_F(Browse, SwitchedOffThePlugInLeavesTheHostMenuAlone) {
    set_preference("delvio_is_on", "0");
    std::vector<std::string> shown;
    steps()
        .when("the window", [&] { return true; }, [&] { right_click(); })
        .when("the menu", [&] { return is_open(0); }, [&] { shown = titles(0); press_escape(); })
        .when("its end", [&] { return popups() == 1; });
    steps().run();
    set_preference("delvio_is_on", "1");
    EXPECT_EQ(shown, host_titles());
}

TEST_F(Browse, ASettingWrittenByAnotherProgramHoldsFromTheNextMenuOn) {
    folder_.file("project/A.txt");
    std::vector<std::string> grouped, mixed;
    auto open_level = [&](std::vector<std::string>& into, int count) {
        steps()
            .when("the window", [&] { return true; }, [&] { right_click(); })
            .when("the menu", [&] { return is_open(0); }, [&] { hover("project"); })
            .when("the level", [&] { return is_open(1); }, [&] { into = titles(1); press_escape(); })
            .when("its end", [this, count] { return popups() == count; });
        steps().run();
        forget_steps();
    };
    open_level(grouped, 1);
    set_preference("sort_order", "1");
    open_level(mixed, 2);
    set_preference("sort_order", "0");
    EXPECT_EQ(grouped,
              (std::vector<std::string>{"build", "docs", "-", "A.txt", "readme.txt"}));
    EXPECT_EQ(mixed, (std::vector<std::string>{"A.txt", "build", "docs", "readme.txt"}));
}

TEST_F(Browse, TheHostsDelegateIsAskedAboutItsOwnMenuAndToldOfHighlightsOfPlugInItems) {
    steps()
        .when("the window", [&] { return true; }, [&] { right_click(); })
        .when("the menu", [&] { return is_open(0); }, [&] { hover("Get Info"); })
        .when("the highlight", [&] { return highlighted(0) == "Get Info"; },
              [&] { hover("project"); })
        .when("the level", [&] { return is_open(1); }, [&] { hover("readme.txt"); })
        .when("the highlight", [&] { return highlighted(1) == "readme.txt"; },
              [&] { press_escape(); })
        .when("its end", [&] { return popups() == 1; });
    steps().run();
    EXPECT_EQ(messages().front(), "menuNeedsUpdate:");
    EXPECT_EQ(count_messages("highlight Get Info"), 0);
    EXPECT_GE(count_messages("highlight project"), 1);
    EXPECT_GE(count_messages("highlight readme.txt"), 1);
    EXPECT_EQ(count_messages("menuDidClose:"), 1);
}

TEST_F(Browse, RemovingAllItemsOfTheOpenMenuBringsThePlugInsBack) {
    std::vector<std::string> shown;
    steps()
        .when("the window", [&] { return true; }, [&] { right_click(); })
        .when("the menu", [&] { return is_open(0); }, [&] { [[window() menu] removeAllItems]; })
        .when("the plug-in's items", [&] { return titles(0).size() == 2; }, [&] {
            shown = titles(0);
            [window() rebuildMenu];
        })
        .when("the host's items", [&] { return titles(0).size() == 5; }, [&] { hover("project"); })
        .when("the level", [&] { return is_open(1); }, [&] { press_escape(); })
        .when("its end", [&] { return popups() == 1; });
    steps().run();
    EXPECT_EQ(shown, (std::vector<std::string>{"project", "-"}));
}

TEST_F(Browse, TwoNestedTakeOversFreeTheTreesAtTheSecondRelease) {
    log_to_file(true);
    size_t after_first = 1, after_second = 0;
    std::vector<std::string> still;
    steps()
        .when("the window", [&] { return true; }, [&] { right_click(); })
        .when("the menu", [&] { return is_open(0); }, [&] {
            take_over_another_menu();
            release_menu();
            after_first = log_lines("Delvio: Free'ing trees").size();
            press_escape();
        })
        .when("its end", [&] { return popups() == 1; });
    steps().run();
    log_to_file(false);
    after_second = log_lines("Delvio: Free'ing trees").size();
    EXPECT_EQ(after_first, 0u);
    EXPECT_EQ(after_second, 1u);
}

TEST_F(Browse, AFolderRemovedWhileItsMenuIsOpenLeavesTheMenuUsable) {
    std::vector<std::string> shown;
    steps()
        .when("the window", [&] { return true; }, [&] { right_click(); })
        .when("the menu", [&] { return is_open(0); }, [&] { hover("project"); })
        .when("the level", [&] { return is_open(1); }, [&] {
            folder_.remove("project/docs");
            hover("docs");
        })
        .when("the removed folder's level", [&] { return is_open(2); },
              [&] { shown = titles(2); press_escape(); })
        .when("its end", [&] { return popups() == 1; });
    steps().run();
    EXPECT_EQ(shown, (std::vector<std::string>{"Folder is empty"}));
}

}  // namespace
