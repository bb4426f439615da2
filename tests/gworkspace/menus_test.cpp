// Tests of the menu in GWorkspace.
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "gworkspace/viewer_desk.h"
#include "hosts/command_runner.h"

using namespace test;

namespace fs = std::filesystem;

namespace {

class Menus : public ViewerDesk {
  protected:
    void SetUp() override {
        ViewerDesk::SetUp();
        if (!HasFatalFailure()) show("icons");
    }
    static int stock_menus() { return atoi(manager().ask("stock").c_str()); }
};

}  // namespace

TEST_F(Menus, AFileOfTheThirdLevelOpens) {
    right_click(item("icons", path("alpha")));
    pick({"alpha", "one", "two", "deep.txt"});
    EXPECT_EQ(program().wait(), Lines({path("alpha/one/two/deep.txt")}));
}

// A desktop file that poses as a photo, an icon that never ends, and a property list that no parser
// survives.
TEST_F(Menus, AFolderOfAStrangersIsListedAndNothingInItRuns) {
    const std::string mark = path("was-run"), pipe = path("beta/pipe.png");
    mkfifo(pipe.c_str(), 0600);
    const std::string entry = changing_folder().file(
        "beta/photo.desktop", "[Desktop Entry]\nType=Application\nName=Holiday photo.jpg\nIcon=" +
                                  pipe + "\nExec=/bin/sh -c 'touch " + mark + "'\n");
    changing_folder().file("beta/Deep.app/Resources/Info-gnustep.plist", std::string(120000, '('));
    right_click(item("icons", path("beta")));
    hover_along({"beta"});
    const Lines shown = titles(1);
    EXPECT_TRUE(contains(shown, "photo.desktop"));
    EXPECT_FALSE(contains(shown, "Holiday photo.jpg"));
    EXPECT_TRUE(contains(shown, "Deep") || contains(shown, "Deep.app")) << shown.size();
    EXPECT_TRUE(contains(shown, "pipe.png"));
    pick({"beta", "photo.desktop"});
    EXPECT_EQ(program().wait(), Lines({entry})) << "it is opened as the text that it is";
    EXPECT_FALSE(fs::exists(mark));
    for (const char* name : {"beta/pipe.png", "beta/photo.desktop", "beta/Deep.app"}) {
        fs::remove_all(path(name));
    }
}

TEST_F(Menus, AProgramThatIsInstalledIsListedBeforeAMenuIsMadeAndGoesWhenItIsRemoved) {
    const std::string entries = getenv("XDG_DATA_HOME") + std::string("/applications");
    const fs::path listed = getenv("XDG_CACHE_HOME") + std::string("/delvio/applications");
    const auto is_listed = [&] {
        std::error_code error;
        for (const auto& each : fs::directory_iterator(listed, error)) {
            if (each.path().string().ends_with("newcomer.desktop")) return true;
        }
        return false;
    };
    fs::create_directories(entries);
    ASSERT_FALSE(is_listed());
    std::ofstream(entries + "/newcomer.desktop")
        << "[Desktop Entry]\nType=Application\nName=Newcomer\nExec=true %f\n";
    EXPECT_TRUE(wait_until([&] { return is_listed(); }));
    fs::remove(entries + "/newcomer.desktop");
    EXPECT_TRUE(wait_until([&] { return !is_listed(); }));
}

TEST_F(Menus, AFolderOpensInAWindowOfGWorkspace) {
    right_click(item("icons", path("alpha")));
    pick({"alpha", "one"});
    EXPECT_TRUE(wait_until([&] { return contains(manager().ask_lines("windows"), "one"); }));
    EXPECT_EQ(program().opened(), Lines());
    manager().ask("close one");
    EXPECT_TRUE(wait_until([&] { return !contains(manager().ask_lines("windows"), "one"); }));
}

// A second GWorkspace would have a desktop and viewers of its own, over those of the first.
TEST_F(Menus, AFileOpensWithGWorkspaceInTheGWorkspaceThatRuns) {
    show("browser");
    left_click(item("browser", path("alpha")));
    right_click(item("browser", path("alpha/readme.txt")));
    pick({"readme.txt", "GWorkspace"});
    EXPECT_TRUE(wait_until([&] { return contains(manager().ask_lines("windows"), "alpha"); }));
    manager().ask("close alpha");
    EXPECT_TRUE(wait_until([&] { return !contains(manager().ask_lines("windows"), "alpha"); }));
}

TEST_F(Menus, GWorkspacesCommandsStandBelowAndTakeTheSelection) {
    right_click(item("icons", path("second.txt")));
    EXPECT_EQ(titles(0),
              Lines({"second.txt", "-", "Settings...", "-", "Open", "Open With...", "-", "Cut",
                     "Copy", "-", "Duplicate", "Move to Recycler", "-", "Attributes"}));
    pick({"Duplicate"});
    answer("Duplicate the selected objects?");
    EXPECT_TRUE(wait_until([&] {
        for (const auto& each : fs::directory_iterator(folder().path())) {
            const std::string name = each.path().filename();
            if (name.starts_with("second") && name != "second.txt") return true;
        }
        return false;
    }));
}

TEST_F(Menus, AFolderIsAddedToTheUsersFoldersAndTakenOutOfThem) {
    right_click(item("icons", path("alpha")));
    pick({"Add to my folders"});
    right_click(item("icons", path("second.txt")));
    const Lines with = titles(0);
    close_menu();
    EXPECT_EQ(Lines(with.begin(), with.begin() + 3), Lines({"alpha", "-", "second.txt"}));
    right_click(item("icons", path("alpha")));
    pick({"Remove from my folders"});
    right_click(item("icons", path("second.txt")));
    EXPECT_EQ(titles(0)[0], "second.txt");
    close_menu();
}

TEST_F(Menus, SettingsOpensTheirWindow) {
    const auto window = [] {
        return output_of("xdotool search --onlyvisible --name '^Delvio Settings$'");
    };
    right_click(item("icons", path("second.txt")));
    pick({"Settings..."});
    EXPECT_TRUE(wait_until([&] { return !window().empty(); }));
    EXPECT_TRUE(wait_until([&] {
        output_of("xdotool search --name '^Delvio Settings$' windowkill");
        return window().empty();
    }));
}

TEST_F(Menus, MoveToRecyclerMovesWhatWasClicked) {
    changing_folder().file("rubbish.txt", "rubbish");
    show("icons");
    left_click(item("icons", path("first.txt")));
    right_click(item("icons", path("rubbish.txt")));
    pick({"Move to Recycler"});
    answer("Move one item from");
    EXPECT_TRUE(wait_until([&] { return !fs::exists(path("rubbish.txt")); }));
    EXPECT_TRUE(fs::exists(getenv("HOME") + std::string("/.Trash/rubbish.txt")));
    EXPECT_TRUE(fs::exists(path("first.txt")));
}

TEST_F(Menus, NewFolderOnTheGroundIsMadeInTheFolderShown) {
    right_click(ground("icons"));
    pick({"New Folder"});
    EXPECT_TRUE(wait_until([&] { return fs::exists(path("NewFolder")); }));
    fs::remove(path("NewFolder"));
}

TEST_F(Menus, CopyPutsTheSelectionOnTheClipboard) {
    select("icons", {path("first.txt"), path("second.txt")});
    const Lines both = selection();
    right_click(item("icons", path("first.txt")));
    pick({"Copy"});
    EXPECT_TRUE(wait_until([&] { return manager().ask_lines("clipboard") == both; }));
}

TEST_F(Menus, AttributesShowsGWorkspacesInspector) {
    right_click(item("icons", path("second.txt")));
    pick({"Attributes"});
    EXPECT_TRUE(wait_until([&] {
        return contains(manager().ask_lines("windows"), "Attributes Inspector");
    })) << manager().ask("windows");
    manager().ask("close Attributes Inspector");
}

TEST_F(Menus, ShiftGivesTheHostsMenuAlone) {
    const Area area = item("icons", path("alpha"));
    input().key_down("Shift_L");
    right_click(area);
    const Lines plain = titles(0);
    input().key_up("Shift_L");
    close_menu();
    EXPECT_EQ(plain, Lines({"Add to my folders", "Settings...", "-", "Open as Folder", "-", "Cut",
                            "Copy", "-", "Duplicate", "Move to Recycler", "-", "Attributes"}));
}

TEST_F(Menus, ControlClickOpensTheMenu) {
    const Area area = item("icons", path("alpha"));
    move_to(area);
    input().key_down("Control_L");
    input().click(1);
    input().key_up("Control_L");
    ASSERT_TRUE(wait_until([&] { return is_open(0); }));
    EXPECT_EQ(selection(), Lines({path("alpha")}));
    hover_along({"alpha", "one"});
    close_menu();
}

TEST_F(Menus, TwentyInARowAreAllTheSame) {
    const Area area = item("icons", path("alpha"));
    right_click(area);
    const Lines first = titles(0);
    close_menu();
    for (int popup = 0; popup < 20; popup++) {
        right_click(area);
        EXPECT_EQ(titles(0), first);
        input().key("Down");
        input().key("Right");
        EXPECT_TRUE(wait_until([&] { return is_open(1); }));
        input().key("Escape");
        ASSERT_TRUE(wait_until([&] { return is_closed(); }));
    }
}

TEST_F(Menus, AnEscapeMoreThanTheMenuNeedsLeavesGWorkspaceUsable) {
    for (const char* form : {"browser", "icons", "list"}) {
        show(form);
        // For a folder: in the browser its column is then the last one, and nothing in it is
        // selected.
        right_click(item(form, path("alpha")));
        for (int press = 0; press < 3; press++) input().key("Escape");
        EXPECT_TRUE(wait_until([&] { return is_closed(); }));
        right_click(item(form, path("alpha")));
        EXPECT_TRUE(contains(titles(0), "alpha")) << form;
        close_menu();
    }
}

TEST_F(Menus, AClickOutsideClosesItAndDoesNothingElse) {
    left_click(item("icons", path("first.txt")));
    right_click(item("icons", path("alpha")));
    left_click(item("icons", path("beta")));
    EXPECT_TRUE(wait_until([&] { return is_closed(); }));
    EXPECT_EQ(selection(), Lines({path("alpha")}));
    EXPECT_TRUE(input().pointer_is_free());
    EXPECT_TRUE(input().keyboard_is_free());
}

TEST_F(Menus, TheMainMenuStaysGNUsteps) {
    const int shown = stock_menus();
    input().move(30, 52);
    input().click(1);
    EXPECT_TRUE(wait_until([&] { return stock_menus() > shown; })) << "no submenu";
    EXPECT_TRUE(is_closed());
    input().click(1);
    EXPECT_TRUE(wait_until([&] { return stock_menus() == shown; })) << "the submenu stays";
}

TEST_F(Menus, APopUpButtonStaysGNUsteps) {
    right_click(item("icons", path("second.txt")));
    pick({"Attributes"});
    Area button;
    ASSERT_TRUE(wait_until([&] {
        button = manager().ask_area("bounds popup");
        return static_cast<bool>(button);
    }));
    const int shown = stock_menus();
    move_to(button);
    input().press(1);
    EXPECT_TRUE(wait_until([&] { return stock_menus() > shown; })) << "no menu";
    EXPECT_TRUE(is_closed());
    input().release(1);
    input().click(1);
    EXPECT_TRUE(wait_until([&] { return stock_menus() == shown; })) << "the menu stays";
    manager().ask("close Attributes Inspector");
}

TEST_F(Menus, AFolderDeletedMeanwhileLeavesMenuAndGWorkspaceUsable) {
    changing_folder().file("doomed/inner/file.txt");
    show("icons");
    right_click(item("icons", path("doomed")));
    hover_along({"doomed"});
    fs::remove_all(path("doomed"));
    move_to(row(1, "inner").area);
    EXPECT_TRUE(wait_until([&] { return is_open(2); }));
    EXPECT_EQ(titles(2), Lines({"Folder is empty"}));
    close_menu();
    right_click(item("icons", path("beta")));
    hover_along({"beta"});
    EXPECT_EQ(titles(1), Lines({"b.txt"}));
    close_menu();
}
