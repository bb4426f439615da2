// The plug-in's file operations, carried out by GWorkspace.
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "gworkspace/viewer_desk.h"

using namespace test;

namespace fs = std::filesystem;

namespace {

// A folder of the user's choice stands in each menu; its level takes the selection.
class Operations : public ViewerDesk {
  protected:
    static void set_setting(const std::string& key, const std::string& value) {
        const std::string command =
            "defaults write org.delvio.Delvio " + key + " '" + value + "' >/dev/null 2>&1";
        ASSERT_EQ(system(command.c_str()), 0);
    }
    static void SetUpTestSuite() {
        const std::string home = getenv("HOME");
        fs::create_directories(home + "/Desktop/basket");
        set_setting("folders", "(\"" + home + "/Desktop/basket\")");
        ViewerDesk::SetUpTestSuite();
    }
    static std::string basket(const std::string& name) {
        return getenv("HOME") + ("/Desktop/basket/" + name);
    }
    void SetUp() override {
        ViewerDesk::SetUp();
        fs::remove_all(basket(""));
        fs::create_directories(basket("one/two/three"));
        if (!HasFatalFailure()) show("icons");
    }
    // A new file in the folder that the viewer shows.
    static std::string add(const std::string& name, const std::string& text) {
        const std::string path = changing_folder().file(name, text);
        manager().ask("show icons");
        return path;
    }
    // Picks a row that shows while a key is held.
    void pick_with_key(const lines_t& way, const std::string& row, const std::string& key) {
        hover_along(way);
        input().key_down(key);
        EXPECT_TRUE(wait_until([&] { return contains(titles(way.size()), row); })) << row;
        left_click(this->row(way.size(), row).area);
        EXPECT_TRUE(wait_until([&] { return is_closed(); }));
        input().key_up(key);
    }
    bool alert_is_open() const { return !manager().ask("button 1").empty(); }
    void hit(int item) {
        std::istringstream place(manager().ask("button " + std::to_string(item)));
        int x = -1, y = -1;
        place >> x >> y;
        ASSERT_GE(x, 0);
        input().move(x, y);
        input().click(1);
        EXPECT_TRUE(wait_until([&] { return !alert_is_open(); }));
    }
    // The selection is of one file, whose name is taken in the basket.
    void move_with_clash(const std::string& path) {
        right_click(item("icons", path));
        pick({"basket", "Move selection here"});
        ASSERT_TRUE(wait_until([&] { return alert_is_open(); }));
    }
};

const lines_t three_levels = {"basket", "one", "two", "three"};
enum { ok = 1, replace = 2 };

}  // namespace

TEST_F(Operations, MoveSelectionHereIsAMoveOfGWorkspaces) {
    right_click(item("icons", path("third.txt")));
    pick({"basket", "one", "two", "three", "Move selection here"});
    EXPECT_TRUE(wait_until([&] { return fs::exists(basket("one/two/three/third.txt")); }));
    EXPECT_TRUE(wait_until([&] { return !fs::exists(path("third.txt")); }));
}

TEST_F(Operations, CopySelectionHereLeavesTheSource) {
    right_click(item("icons", path("second.txt")));
    pick_with_key(three_levels, "Copy selection here", "Alt_R");
    const std::string copy = basket("one/two/three/second.txt");
    EXPECT_TRUE(wait_until([&] { return read_file(copy) == "second.txt"; }));
    EXPECT_TRUE(fs::exists(path("second.txt")));
}

TEST_F(Operations, AliasSelectionHereMakesALink) {
    right_click(item("icons", path("second.txt")));
    pick_with_key(three_levels, "Alias selection here", "Shift_L");
    const std::string alias = basket("one/two/three/second.txt");
    EXPECT_TRUE(wait_until([&] { return fs::is_symlink(alias); }));
    EXPECT_TRUE(fs::equivalent(alias, path("second.txt")));
}

TEST_F(Operations, AFolderIsMovedWithAllThatIsInIt) {
    add("moved/deep/inside.txt", "inside");
    right_click(item("icons", path("moved")));
    pick({"basket", "Move selection here"});
    const std::string inside = basket("moved/deep/inside.txt");
    EXPECT_TRUE(wait_until([&] { return read_file(inside) == "inside"; }));
    EXPECT_TRUE(wait_until([&] { return !fs::exists(path("moved")); }));
}

TEST_F(Operations, OddNamesArrive) {
    for (const std::string& name :
         {std::string("-rf"), std::string("line\nbreak"), std::string(255, 'n'),
          std::string("100% #?\""), std::string("\u00e4\u4e2d")}) {
        const std::string source = add(name, "text");
        right_click(item("icons", source));
        pick({"basket", "Move selection here"});
        EXPECT_TRUE(wait_until([&] { return read_file(basket(name)) == "text"; })) << name;
        EXPECT_TRUE(wait_until([&] { return !fs::exists(source); })) << name;
    }
}

TEST_F(Operations, NamesThatGWorkspaceMistakesAreRefusedBeforeAnythingIsTouched) {
    const struct {
        const char *name, *title, *reason;
    } rows[] = {
        {"odd \xff", "Delvio: No name found?",
         "the name \"odd \u00ff\" is not UTF-8, as all names are for GWorkspace"},
        {"back\\slash", "back\\slash", "GWorkspace does not understand the name \"back\\slash\""},
    };
    for (const auto& row : rows) {
        fs::create_directory(basket(row.name));
        right_click(item("icons", path("first.txt")));
        hover_along({"basket"});
        std::string title;
        for (const std::string& each : titles(1)) {
            if (each.rfind(row.title, 0) == 0) title = each;
        }
        pick({"basket", title, "Move selection here"});
        ASSERT_TRUE(wait_until([&] { return alert_is_open(); })) << row.name;
        EXPECT_EQ(manager().ask("told"), std::string("One item was not done.\n") + row.reason);
        hit(ok);
        EXPECT_TRUE(fs::exists(path("first.txt")));
        EXPECT_TRUE(fs::is_empty(basket(row.name)));
    }
}

TEST_F(Operations, TheAlertReplacesByMouse) {
    const std::string source = add("taken.txt", "new");
    std::ofstream(basket("TAKEN.txt")) << "other";
    std::ofstream(basket("taken.txt")) << "old";
    move_with_clash(source);
    hit(replace);
    EXPECT_TRUE(wait_until([&] { return read_file(basket("taken.txt")) == "new"; }));
    EXPECT_TRUE(wait_until([&] { return !fs::exists(source); }));
    EXPECT_EQ(read_file(basket("TAKEN.txt")), "other");
}

TEST_F(Operations, TheDestinationIsOpenedWhenAsked) {
    set_setting("open_after_file_op", "1");
    right_click(item("icons", path("alpha")));
    pick({"basket", "one", "Move selection here"});
    EXPECT_TRUE(wait_until([&] { return fs::exists(basket("one/alpha/readme.txt")); }));
    EXPECT_TRUE(wait_until([&] { return contains(manager().ask_lines("windows"), "one"); }));
    set_setting("open_after_file_op", "0");
}

TEST_F(Operations, TheAlertKeepsByReturnAndGWorkspaceAsksOnItsOwn) {
    const std::string source = add("kept.txt", "new");
    std::ofstream(basket("kept.txt")) << "old";
    move_with_clash(source);
    input().key("Return");
    EXPECT_TRUE(wait_until([&] { return !alert_is_open(); }));
    // GWorkspace asks on its own then: the operation is not cancelled.
    const auto asks = [] {
        return manager().ask("alert").find("do you want to replace them?") != std::string::npos;
    };
    ASSERT_TRUE(wait_until(asks)) << manager().ask("alert");
    EXPECT_EQ(read_file(basket("kept.txt")), "old");
    EXPECT_EQ(read_file(source), "new");
    input().key("Return");
    EXPECT_TRUE(wait_until([&] { return read_file(basket("kept.txt")) == "new"; }));
    EXPECT_TRUE(wait_until([&] { return !fs::exists(source); }));
}
