// The plug-in's file operations in GWorkspace. GWorkspace does them itself where every name is
// free; the engine does them where one is taken. GWorkspace has its default settings, so it asks
// before it does anything.
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "gworkspace/viewer_desk.h"
#include "operations/engine.h"

using namespace test;

namespace fs = std::filesystem;

namespace {

// Each menu contains a folder of the user's choice; the selection is moved into its level.
class Operations : public ViewerDesk {
  protected:
    enum { replace = 2 };
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
    void pick_for(const std::string& path, const Lines& way) {
        right_click(item("icons", path));
        pick(way);
    }

    // The plug-in's alert.
    static bool alert_is_open() { return !manager().ask("button 1").empty(); }
    void refuse_by_return() {
        ASSERT_TRUE(wait_until([&] { return alert_is_open(); }));
        input().key("Return");
        EXPECT_TRUE(wait_until([&] { return !alert_is_open(); }));
    }
    // A copy that replaces a file and takes long enough to be observed.
    std::string begin_long_copy() {
        constexpr int count = 60000;
        const std::string source = path("many");
        fs::create_directory(source);
        for (int number = 0; number < count; number++) {
            fs::create_symlink("nowhere", source + "/" + std::to_string(number));
        }
        std::ofstream(basket("many")) << "old";
        show("icons");
        right_click(item("icons", source));
        pick_with_key({"basket"}, "Copy selection here", "Alt_R");
        click_at("button " + std::to_string(replace));
        return source;
    }
    // The question about a taken name, once it can be answered.
    static bool asks_about(const std::string& name) {
        return !manager().ask("part Skip").empty() &&
               manager().ask("panel").find("“" + name + "”") != std::string::npos;
    }
    // Nothing waits for an answer, and no question is about to come.
    static bool is_quiet() {
        return manager().ask("idle") == "yes" && manager().ask("panel").empty();
    }
    struct Undone : operations::Observer {
        void ended(const operations::Report&) override {}
    };
    // The reason why nothing is undone.
    static std::string refusal_of_undo() {
        Undone observer;
        const operations::Report report = operations::undo_last(observer);
        return report.outcomes.empty() ? "" : report.outcomes[0].reason;
    }
    static void undo() {
        Undone observer;
        for (const auto& outcome : operations::undo_last(observer).outcomes) {
            EXPECT_EQ(outcome.state, operations::State::Done) << outcome.reason;
        }
    }
};

const Lines three_levels = {"basket", "one", "two", "three"};
const Lines to_basket = {"basket", "Move selection here"};
}  // namespace

TEST_F(Operations, MoveSelectionHereIsAMoveOfGWorkspaces) {
    const std::string source = add("moved.txt", "moved");
    pick_for(source, {"basket", "one", "two", "three", "Move selection here"});
    answer("Move one item from");
    EXPECT_TRUE(wait_until([&] { return fs::exists(basket("one/two/three/moved.txt")); }));
    EXPECT_TRUE(wait_until([&] { return !fs::exists(source); }));
    EXPECT_EQ(refusal_of_undo(),
              "the last operation (moving \"moved.txt\") was handed to GWorkspace, and can only be "
              "undone there");
}

TEST_F(Operations, CopySelectionHereLeavesTheSource) {
    right_click(item("icons", path("second.txt")));
    pick_with_key(three_levels, "Copy selection here", "Alt_R");
    answer("Copy one item from");
    const std::string copy = basket("one/two/three/second.txt");
    EXPECT_TRUE(wait_until([&] { return read_file(copy) == "second.txt"; }));
    EXPECT_TRUE(fs::exists(path("second.txt")));
}

// Left Alt, right Alt, and right Alt on a layout where it is AltGr.
TEST_F(Operations, OptionIsEitherAltKeyAndAltGr) {
    const std::string left = input().place_of("Alt_L"), right = input().place_of("Alt_R");
    const struct {
        const char* layout;
        std::string key;
    } rows[] = {{"us", left}, {"us", right}, {"de", right}, {"de", left}, {"fr", right}};
    for (const auto& row : rows) {
        ASSERT_EQ(system((std::string("setxkbmap ") + row.layout).c_str()), 0);
        right_click(item("icons", path("second.txt")));
        pick_with_key(three_levels, "Copy selection here", row.key);
        answer("Copy one item from");
        const std::string copy = basket("one/two/three/second.txt");
        EXPECT_TRUE(wait_until([&] { return read_file(copy) == "second.txt"; })) << row.layout;
        fs::remove(copy);
    }
    ASSERT_EQ(system("setxkbmap us"), 0);
}

TEST_F(Operations, AliasSelectionHereMakesALink) {
    right_click(item("icons", path("second.txt")));
    pick_with_key(three_levels, "Alias selection here", "Shift_L");
    answer("Link one item from");
    const std::string alias = basket("one/two/three/second.txt");
    EXPECT_TRUE(wait_until([&] { return fs::is_symlink(alias); }));
    EXPECT_TRUE(fs::equivalent(alias, path("second.txt")));
}

TEST_F(Operations, AFolderIsMovedWithAllThatIsInIt) {
    add("moved/deep/inside.txt", "inside");
    pick_for(path("moved"), to_basket);
    answer("Move one item from");
    const std::string inside = basket("moved/deep/inside.txt");
    EXPECT_TRUE(wait_until([&] { return read_file(inside) == "inside"; }));
    EXPECT_TRUE(wait_until([&] { return !fs::exists(path("moved")); }));
}

TEST_F(Operations, OddNamesArrive) {
    for (const std::string& name :
         {std::string("-rf"), std::string("line\nbreak"), std::string(255, 'n'),
          std::string("100% #?\""), std::string("\u00e4\u4e2d")}) {
        const std::string source = add(name, "text");
        pick_for(source, to_basket);
        answer("Move one item from");
        EXPECT_TRUE(wait_until([&] { return read_file(basket(name)) == "text"; })) << name;
        EXPECT_TRUE(wait_until([&] { return !fs::exists(source); })) << name;
    }
}

TEST_F(Operations, WhereGWorkspaceWouldMistakeANameTheEngineMovesUnasked) {
    const struct {
        const char *name, *title;
    } rows[] = {{"odd \xff", "Delvio: No name found?"}, {"back\\slash", "back\\slash"}};
    for (const auto& row : rows) {
        const std::string source = add("into.txt", "text");
        fs::create_directory(basket(row.name));
        right_click(item("icons", source));
        hover_along({"basket"});
        std::string title;
        for (const std::string& each : titles(1)) {
            if (each.rfind(row.title, 0) == 0) title = each;
        }
        pick({"basket", title, "Move selection here"});
        EXPECT_TRUE(wait_until([&] { return !fs::exists(source); })) << row.name;
        EXPECT_EQ(read_file(basket(row.name) + "/into.txt"), "text");
        EXPECT_TRUE(is_quiet());
        fs::remove_all(basket(row.name));
    }
}

TEST_F(Operations, AfterDontReplaceReturnAtEachQuestionLeavesBothFiles) {
    const std::string source = add("kept.txt", "new");
    std::ofstream(basket("kept.txt")) << "old";
    pick_for(source, to_basket);
    refuse_by_return();
    ASSERT_TRUE(wait_until([&] { return asks_about("kept.txt"); })) << manager().ask("alert");
    input().key("Return");
    EXPECT_TRUE(wait_until([&] { return is_quiet(); })) << manager().ask("alert");
    EXPECT_EQ(read_file(basket("kept.txt")), "old");
    EXPECT_EQ(read_file(source), "new");
}

TEST_F(Operations, OneQuestionAfterTheAlertIsForAllNamesThatAreTaken) {
    for (const char* name : {"a1.txt", "a2.txt", "a3.txt"}) {
        add(name, "new");
        std::ofstream(basket(name)) << "old";
    }
    fs::remove(basket("a2.txt"));  // one name is free: it gets no question of its own
    show("icons");
    select("icons", {path("a1.txt"), path("a2.txt"), path("a3.txt")});
    right_click(item("icons", path("a1.txt")));
    pick(to_basket);
    refuse_by_return();
    ASSERT_TRUE(wait_until([&] { return asks_about("a1.txt"); })) << manager().ask("alert");
    input().key("Return");
    EXPECT_TRUE(wait_until([&] { return read_file(basket("a2.txt")) == "new"; }));
    EXPECT_TRUE(wait_until([&] { return is_quiet(); })) << manager().ask("panel");
    EXPECT_EQ(read_file(basket("a1.txt")), "old");
    EXPECT_EQ(read_file(basket("a3.txt")), "old");
    EXPECT_TRUE(fs::exists(path("a1.txt")) && fs::exists(path("a3.txt")));
    for (const char* name : {"a1.txt", "a3.txt"}) fs::remove(path(name));
}

TEST_F(Operations, WhatTheQuestionReplacesComesBackByUndo) {
    const std::string source = add("swapped.txt", "new");
    std::ofstream(basket("swapped.txt")) << "old";
    pick_for(source, to_basket);
    refuse_by_return();
    ASSERT_TRUE(wait_until([&] { return asks_about("swapped.txt"); }));
    click_at("part Replace");
    EXPECT_TRUE(wait_until([&] { return read_file(basket("swapped.txt")) == "new"; }));
    EXPECT_TRUE(wait_until([&] { return is_quiet(); }));
    undo();
    EXPECT_EQ(read_file(basket("swapped.txt")), "old");
    EXPECT_EQ(read_file(source), "new");
}

TEST_F(Operations, TheAlertReplacesByMouseAndUndoBringsTheOldBack) {
    const std::string source = add("taken.txt", "new");
    std::ofstream(basket("TAKEN.txt")) << "other";
    std::ofstream(basket("taken.txt")) << "old";
    pick_for(source, to_basket);
    click_at("button " + std::to_string(replace));
    EXPECT_TRUE(wait_until([&] { return read_file(basket("taken.txt")) == "new"; }));
    EXPECT_TRUE(wait_until([&] { return !fs::exists(source); }));
    EXPECT_EQ(read_file(basket("TAKEN.txt")), "other");
    EXPECT_TRUE(wait_until([&] { return !manager().ask_area("item icons " + source); }))
        << "the viewer still shows what is gone";
    undo();
    EXPECT_EQ(read_file(basket("taken.txt")), "old");
    EXPECT_EQ(read_file(source), "new");
}

TEST_F(Operations, TheMenuUndoesWhatTheEngineDidAndNotWhatGWorkspaceDid) {
    const std::string undo_row = "Undo Move of \"swapped.txt\"";
    const std::string source = add("swapped.txt", "new");
    std::ofstream(basket("swapped.txt")) << "old";
    pick_for(source, to_basket);
    click_at("button " + std::to_string(replace));
    EXPECT_TRUE(wait_until([&] { return !fs::exists(source); }));
    right_click(item("icons", path("second.txt")));
    EXPECT_TRUE(contains(titles(0), undo_row));
    pick({undo_row});
    refuse_by_return();  // the panel that tells what was done
    EXPECT_EQ(read_file(basket("swapped.txt")), "old");
    EXPECT_EQ(read_file(source), "new");
    fs::remove(basket("swapped.txt"));
    show("icons");
    pick_for(source, to_basket);
    answer("Move one item from");
    EXPECT_TRUE(wait_until([&] { return !fs::exists(source); }));
    right_click(item("icons", path("second.txt")));
    EXPECT_FALSE(contains(titles(0), undo_row));
    close_menu();
}

TEST_F(Operations, ANameThatIsTakenWhileGWorkspaceAsksIsAskedAboutOnceMoreAndReplacesNothing) {
    const std::string source = add("late.txt", "new");
    pick_for(source, to_basket);
    ASSERT_TRUE(wait_until([&] { return !manager().ask("question").empty(); }));
    std::ofstream(basket("late.txt")) << "old";
    answer("Move one item from");
    ASSERT_TRUE(wait_until([&] { return asks_about("late.txt"); })) << manager().ask("alert");
    input().key("Return");
    EXPECT_TRUE(wait_until([&] { return is_quiet(); })) << manager().ask("alert");
    EXPECT_EQ(read_file(basket("late.txt")), "old");
    EXPECT_EQ(read_file(source), "new");
    fs::remove(source);
}

TEST_F(Operations, ANameThatIsTakenAsGWorkspaceBeginsIsNotReplacedAndTheUserIsTold) {
    const std::string source = add("last.txt", "new"), other = add("other.txt", "other");
    manager().ask("take_at_start " + basket("last.txt"));
    pick_for(source, to_basket);
    answer("Move one item from");
    EXPECT_TRUE(wait_until([&] { return read_file(basket("last.txt")) == "taken"; }));
    EXPECT_TRUE(wait_until([&] {
        return manager().ask("told") ==
               "One item failed.\n\"last.txt\" was not moved: \"basket\" has a file of that name "
               "now";
    })) << manager().ask("told");
    refuse_by_return();
    // It has come to an end, without a question of its own, when it moves another.
    pick_for(other, to_basket);
    answer("Move one item from");
    EXPECT_TRUE(wait_until([&] { return !fs::exists(other); })) << manager().ask("alert");
    EXPECT_EQ(read_file(basket("last.txt")), "taken");
    EXPECT_EQ(read_file(source), "new");
    fs::remove(source);
}

TEST_F(Operations, AFileThatTheMenuHidesIsNoMoreReplacedThanOthers) {
    const std::string source = add(".hidden", "new");
    std::ofstream(basket(".hidden")) << "old";
    pick_for(source, to_basket);
    // The plug-in's alert knows only the files that the menu lists.
    ASSERT_TRUE(wait_until([&] { return asks_about(".hidden"); })) << manager().ask("alert");
    input().key("Return");
    EXPECT_TRUE(wait_until([&] { return is_quiet(); }));
    EXPECT_EQ(read_file(basket(".hidden")), "old");
    EXPECT_EQ(read_file(source), "new");
    fs::remove(source);
}

TEST_F(Operations, AnAliasOfATakenNameGetsAnother) {
    std::ofstream(basket("second.txt")) << "old";
    right_click(item("icons", path("second.txt")));
    pick_with_key({"basket"}, "Alias selection here", "Shift_L");
    refuse_by_return();
    EXPECT_TRUE(wait_until([&] {
        return fs::is_symlink(basket("second alias.txt")) ||
               fs::is_symlink(basket("second.txt alias"));
    }));
    EXPECT_EQ(read_file(basket("second.txt")), "old");
    EXPECT_TRUE(wait_until([&] { return is_quiet(); }));
}

TEST_F(Operations, NoWindowOfOursStandsBesideGWorkspacesQuestion) {
    const std::string source = add("waiting.txt", "text");
    pick_for(source, to_basket);
    ASSERT_TRUE(wait_until([&] { return !manager().ask("question").empty(); }));
    // Waits twice the half second after which one of our windows would appear.
    EXPECT_FALSE(wait_until([&] { return !manager().ask("panel").empty(); }, 1));
    answer("Move one item from");
    EXPECT_TRUE(wait_until([&] { return !fs::exists(source); }));
}

TEST_F(Operations, CancelInTheProgressWindowEndsTheWork) {
    const std::string source = begin_long_copy();
    click_at("part Cancel");
    EXPECT_TRUE(wait_until([&] { return is_quiet(); })) << manager().ask("panel");
    EXPECT_EQ(read_file(basket("many")), "old")
        << "what was to be replaced is back, or still there";
    fs::remove_all(source);
}

TEST_F(Operations, OurProgressWindowGivesWayToAQuestionOfGWorkspacesAndComesBack) {
    const std::string other = add("asked.txt", "asked"), source = begin_long_copy();
    ASSERT_TRUE(wait_until([&] { return !manager().ask("part Cancel").empty(); }));
    pick_for(other, to_basket);
    ASSERT_TRUE(wait_until([&] { return !manager().ask("question").empty(); }));
    EXPECT_TRUE(wait_until([&] { return manager().ask("covering").empty(); }));
    answer("Move one item from");
    EXPECT_TRUE(wait_until([&] { return !fs::exists(other); }));
    click_at("part Cancel");
    EXPECT_TRUE(wait_until([&] { return is_quiet(); })) << manager().ask("panel");
    fs::remove_all(source);
}

TEST_F(Operations, TheDestinationIsOpenedWhenAsked) {
    const std::string source = add("opener.txt", "text");
    set_setting("open_after_file_op", "1");
    pick_for(source, {"basket", "one", "Move selection here"});
    set_setting("open_after_file_op", "0");
    answer("Move one item from");
    EXPECT_TRUE(wait_until([&] { return fs::exists(basket("one/opener.txt")); }));
    EXPECT_TRUE(wait_until([&] { return contains(manager().ask_lines("windows"), "one"); }));
    manager().ask("close one");
    EXPECT_TRUE(wait_until([&] { return !contains(manager().ask_lines("windows"), "one"); }));
}
