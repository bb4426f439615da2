// Moving, copying and linking the selection by hand, and the question about files of the same
// names.
#include <AppKit/AppKit.h>
#include <Carbon/Carbon.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "desktop/desk.h"
#include "finderkit/file_operations.h"
#include "finderkit/finder_events.h"
#include "operations/engine.h"
#include "operations_ui/operation_window.h"
#include "panels/alert_panel.h"

namespace {

using test::read_file;
using test::Steps;
using Titles = std::vector<std::string>;

enum { dont_replace = kAlertStdAlertOKButton, replace = kAlertStdAlertCancelButton };

AlertPanel* alert() {
    NSWindow* window = [NSApp modalWindow];
    return [window isKindOfClass:[AlertPanel class]] ? static_cast<AlertPanel*>(window) : nil;
}

bool alert_is_open() { return [alert() isVisible] && [alert() isKeyWindow]; }

class MoveCopy : public test::Desk {
  protected:
    void SetUp() override {
        FileOperationService service;
        service.carrier = operations::make_engine();
        service.observer = [](const operations::Request& request) {
            return operations::make_window_observer(request, nullptr);
        };
        set_file_operation_service(service);
        folder_.folder("from/one/two/three");
        folder_.file("from/a.txt", "new a");
        folder_.file("from/b.txt", "b");
        select({path("one"), path("a.txt"), path("b.txt")});
    }
    void TearDown() override {
        set_preference("open_after_file_op", "0");
        set_file_operation_service({});
    }
    std::string path(const std::string& name) const { return folder_.path("from/" + name); }
    bool is_there(const std::string& name) const {
        struct stat status;
        return lstat(path(name).c_str(), &status) == 0;
    }

    // Runs a popup in which this row, three levels down, is clicked with a key held ("" for none),
    // and continues until the operation has ended.
    void pick_three_levels_down(
        const std::string& row, const std::string& key = "",
        const std::function<void(Steps&)>& after = [](Steps&) {}) {
        const Titles way = {"one", "two", "three"};
        pop_up([&](Steps& steps) {
            hover_along(steps, way);
            steps.when(
                "the third level", [this] { return is_open(3); },
                [this, key] {
                    EXPECT_EQ(titles(3), Titles({"Move selection here", "-", "Folder is empty"}));
                    if (!key.empty()) input().key_down(key);
                });
            steps.when(
                "the row", [this, row] { return titles(3).at(0) == row; },
                [this, row] { click(row); });
            after(steps);
        });
        input().let_go();
        finish();
    }
    static void finish() {
        finish_finder_events();
        operations::run_until_operations_end();
    }
    void hit(int item) {
        const MenuPoint at = [alert() middleOfItem:item];
        ASSERT_GE(at.x, 0);
        input().move(at.x, at.y);
        input().click(1);
    }
    // The destination has a file of the same name; the script answers the alert.
    void move_with_clash(const std::function<void()>& answer) {
        folder_.file("from/one/A.TXT", "other");
        folder_.file("from/one/a.txt", "old a");
        pop_up([&](Steps& steps) {
            hover_along(steps, {"one"});
            steps
                .when(
                    "the level", [this] { return is_open(1); },
                    [this] { click("Move selection here"); })
                .when("the alert", alert_is_open, [&] {
                    EXPECT_FALSE(is_open(0)) << "the menu has closed";
                    EXPECT_TRUE(input().pointer_is_free());
                    EXPECT_TRUE(input().keyboard_is_free());
                    answer();
                });
        });
        EXPECT_EQ(alert(), nil);
    }
    // Waits until the engine asks or has ended.
    void finish_skipping_conflicts() {
        finish_finder_events();
        Steps steps;
        steps.when(
            "the conflict", [] { return [NSApp modalWindow] != nil; },
            [this] { input().key("Return"); });
        steps.when("its end", [] { return !operations::windows_are_needed(); });
        steps.run();
    }
};

TEST_F(MoveCopy, MovesTheSelectionThreeLevelsDown) {
    pick_three_levels_down("Move selection here");
    EXPECT_EQ(read_file(path("one/two/three/a.txt")), "new a");
    EXPECT_EQ(read_file(path("one/two/three/b.txt")), "b");
    EXPECT_FALSE(is_there("a.txt"));
    EXPECT_FALSE(is_there("b.txt"));
    EXPECT_FALSE(is_there("one/two/three/one")) << "a folder does not go into itself";
}

TEST_F(MoveCopy, CopiesWithOption) {
    pick_three_levels_down("Copy selection here", "Alt_R");
    EXPECT_EQ(read_file(path("one/two/three/a.txt")), "new a");
    EXPECT_EQ(read_file(path("a.txt")), "new a");
    EXPECT_FALSE(is_there("one/two/three/one"));
}

TEST_F(MoveCopy, MakesAliasesWithShift) {
    pick_three_levels_down("Alias selection here", "Shift_L");
    for (const char* name : {"a.txt", "b.txt", "one"}) {
        const std::string alias = path("one/two/three/") + name;
        EXPECT_TRUE(std::filesystem::is_symlink(alias)) << alias;
        EXPECT_TRUE(std::filesystem::equivalent(alias, path(name))) << alias;
    }
    EXPECT_EQ(read_file(path("a.txt")), "new a");
}

TEST_F(MoveCopy, TheAlertReplacesByMouse) {
    move_with_clash([this] { hit(replace); });
    finish();
    EXPECT_EQ(read_file(path("one/a.txt")), "new a");
    EXPECT_EQ(read_file(path("one/A.TXT")), "other");
    EXPECT_FALSE(is_there("a.txt"));
    EXPECT_TRUE(is_there("one/b.txt"));
}

TEST_F(MoveCopy, TheAlertKeepsByMouseAndTheOperationGoesOn) {
    move_with_clash([this] { hit(dont_replace); });
    finish_skipping_conflicts();
    EXPECT_EQ(read_file(path("one/a.txt")), "old a");
    EXPECT_EQ(read_file(path("a.txt")), "new a");
    EXPECT_EQ(read_file(path("one/b.txt")), "b");
}

TEST_F(MoveCopy, TheAlertKeepsByReturn) {
    move_with_clash([this] { input().key("Return"); });
    finish_skipping_conflicts();
    EXPECT_EQ(read_file(path("one/a.txt")), "old a");
    EXPECT_EQ(read_file(path("a.txt")), "new a");
}

TEST_F(MoveCopy, TheDestinationIsOpenedWhenAsked) {
    set_preference("open_after_file_op", "1");
    pick_three_levels_down("Move selection here");
    EXPECT_EQ(program().wait(), Titles({path("one/two/three")}));
    EXPECT_TRUE(is_there("one/two/three/a.txt"));
}

TEST_F(MoveCopy, TheRowFollowsTheKeys) {
    pop_up([&](Steps& steps) {
        hover_along(steps, {"one"});
        const auto shows = [this](const char* title) {
            return [this, title] { return is_open(1) && titles(1).at(0) == title; };
        };
        steps.when("move", shows("Move selection here"), [&] { input().key_down("Alt_R"); })
            .when("copy", shows("Copy selection here"),
                  [&] {
                      input().key_up("Alt_R");
                      input().key_down("Shift_L");
                  })
            .when("alias", shows("Alias selection here"), [&] { input().key_up("Shift_L"); })
            .when("move again", shows("Move selection here"), [&] { escape(); });
    });
}

}  // namespace
