// The plug-in's file operations, carried out by GWorkspace.
#include <stdlib.h>

#include <filesystem>

#include "gworkspace/viewer_desk.h"

using namespace test;

namespace fs = std::filesystem;

namespace {

// A folder of the user's choice stands in each menu; its level takes the selection.
class Operations : public ViewerDesk {
  protected:
    static void SetUpTestSuite() {
        const std::string home = getenv("HOME");
        fs::create_directories(home + "/Desktop/basket");
        const std::string command = "defaults write org.delvio.Delvio folders '(\"" + home +
                                    "/Desktop/basket\")' >/dev/null 2>&1";
        ASSERT_EQ(system(command.c_str()), 0);
        ViewerDesk::SetUpTestSuite();
    }
    static std::string basket(const std::string& name) {
        return getenv("HOME") + ("/Desktop/basket/" + name);
    }
    void SetUp() override {
        ViewerDesk::SetUp();
        if (!HasFatalFailure()) show("icons");
    }
};

}  // namespace

TEST_F(Operations, MoveSelectionHereIsAMoveOfGWorkspaces) {
    right_click(item("icons", path("third.txt")));
    pick({"basket", "Move selection here"});
    EXPECT_TRUE(wait_until([&] { return fs::exists(basket("third.txt")); }));
    EXPECT_TRUE(wait_until([&] { return !fs::exists(path("third.txt")); }));
}

TEST_F(Operations, CopySelectionHereLeavesTheSource) {
    right_click(item("icons", path("second.txt")));
    hover_along({"basket"});
    input().key_down("Alt_R");
    EXPECT_TRUE(wait_until([&] { return contains(titles(1), "Copy selection here"); }));
    move_to(row(1, "Copy selection here").area);
    input().click(1);
    EXPECT_TRUE(wait_until([&] { return is_closed(); }));
    input().key_up("Alt_R");
    EXPECT_TRUE(wait_until([&] { return fs::exists(basket("second.txt")); }));
    EXPECT_TRUE(fs::exists(path("second.txt")));
}
