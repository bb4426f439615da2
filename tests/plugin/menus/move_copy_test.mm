#include "menus/DVDelvio+MoveCopy.h"

#include <host/menu_tracking.h>
#include <host/modifier_keys.h>
#include <host/process.h>

#include "items/DVMenu.h"
#include "items/DVMenuItem.h"
#include "menus/DVDelvio+Population.h"
#include "menus/DVDelvio+Selection.h"
#include "plugin/finder/finder_post.h"
#include "plugin/menu_fixture.h"
#include "support/dv_log.h"
#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

namespace {

using test::item_titled;
using test::titles_of;
using test::Titles;

const Titles move_rows = {"Move selection here", "Copy selection here", "Alias selection here",
                          "-"};

Titles after_move_rows(const Titles& titles) {
    Titles all = move_rows;
    all.insert(all.end(), titles.begin(), titles.end());
    return all;
}

class MoveCopy : public test::MenuTest {
  protected:
    MoveCopy() { answer_standard_alerts(kAlertAnswerDefault); }
    ~MoveCopy() override {
        answer_standard_alerts(kAlertAnswerAsk);
        set_held_modifier_flags(0);
        dvEnableDebugOutput = 0;
    }
    // A selection of two: a folder with a folder and a file in it, and a file.
    NSMenu* select_two() {
        const std::string folder = folder_.folder("one"), file = folder_.file("two");
        folder_.folder("one/below/deep");
        folder_.file("one/text");
        return select({folder, file});
    }
    static bool has_rows(NSMenu* menu) {
        const Titles titles = titles_of(menu);
        return titles.size() >= move_rows.size() &&
               Titles(titles.begin(), titles.begin() + 4) == move_rows;
    }
    // An element as the log prints it.
    static unsigned number(const dv_tree_t* elem) {
        return static_cast<unsigned>(reinterpret_cast<uintptr_t>(elem));
    }
    static dv_tree_t* tree_of(NSMenuItem* item) { return [static_cast<DVMenuItem*>(item) tree]; }
    test::Letter pick(NSMenu* menu, const char* title) {
        [controller_ dvItemSelected:item_titled(menu, title)];
        const auto& letters = post_.letters();
        EXPECT_FALSE(letters.empty());
        return letters.empty() ? test::Letter() : letters.back();
    }

    test::FinderPost post_;
};

}  // namespace

TEST_F(MoveCopy, OneSelectedFolderHasNoRowsAtAnyLevel) {
    const std::string path = folder_.folder("a");
    folder_.folder("a/b");
    folder_.folder("a/b/c");
    NSMenu* menu = select({path});
    EXPECT_EQ(titles_of(menu), Titles({"a", "-"}));
    EXPECT_EQ(titles_of(open(menu, "a")), Titles({"b"}));
    EXPECT_EQ(titles_of(open(open(menu, "a"), "b")), Titles({"c"}));
    EXPECT_EQ(titles_of(open(open(open(menu, "a"), "b"), "c")), Titles({"Folder is empty"}));
}

TEST_F(MoveCopy, TwoSelectedItemsHaveTheRowsInEveryLevelOfBoth) {
    folder_.folder("a/b/c");
    folder_.folder("d/e");
    NSMenu* menu = select({folder_.path("a"), folder_.path("d")});
    EXPECT_EQ(titles_of(menu), Titles({"a", "d", "-"}));
    EXPECT_EQ(titles_of(open(menu, "a")), after_move_rows({"b"}));
    EXPECT_EQ(titles_of(open(open(menu, "a"), "b")), after_move_rows({"c"}));
    EXPECT_EQ(titles_of(open(open(open(menu, "a"), "b"), "c")),
              after_move_rows({"Folder is empty"}));
    EXPECT_EQ(titles_of(open(menu, "d")), after_move_rows({"e"}));
}

TEST_F(MoveCopy, UserFoldersAlwaysHaveTheRows) {
    folder_.folder("user/below");
    set("folders", @[ test::string_of(folder_.path("user")) ]);
    NSMenu* menu = select({folder_.file("a")});
    EXPECT_EQ(titles_of(open(menu, "user")), after_move_rows({"below"}));
    EXPECT_EQ(titles_of(open(open(menu, "user"), "below")), after_move_rows({"Folder is empty"}));
}

TEST_F(MoveCopy, TheRowsCanBeSwitchedOff) {
    set("hideMoveCopyAlias", 1);
    NSMenu* menu = select_two();
    EXPECT_EQ(titles_of(open(menu, "one")).at(0), "below");
    EXPECT_EQ(dv_->copies, nullptr);
}

TEST_F(MoveCopy, ApplicationListsOfferNothing) {
    folder_.folder("apps/empty");
    folder_.file("apps/full/x.app/inside");
    select_two();
    dv_->open_with =
        dv_build_tree(folder_.path("apps").c_str(), 0, 1, dv_get_flags(dv_), DV_ORIGIN_APP_LIST);
    DVMenu* menu = [[[DVMenu alloc] initWithTitle:@"" andTree:dv_->open_with] autorelease];
    [controller_ menuWillOpen:menu];
    EXPECT_EQ(titles_of(menu), Titles({"empty", "full"}));
    EXPECT_EQ(titles_of(open(menu, "full")), Titles({"x.app"}));
    EXPECT_EQ(dv_->copies, nullptr);
}

TEST_F(MoveCopy, PackagesHaveNoRows) {
    set("show_package_contents", 1);
    folder_.file("one/part.bundle/inside");
    NSMenu* level = open(select({folder_.path("one"), folder_.file("two")}), "one");
    EXPECT_TRUE(has_rows(level));
    EXPECT_EQ(titles_of(open(level, "part.bundle")).at(0), "inside");
}

TEST_F(MoveCopy, OneRowShowsAndOptionAndShiftTakeItsPlace) {
    NSMenu* level = open(select_two(), "one");
    const struct {
        NSUInteger held;
        const char* title;
        NSInteger tag;
    } rows[] = {{0, "Move selection here", 0},
                {NSAlternateKeyMask, "Copy selection here", 1},
                {NSShiftKeyMask, "Alias selection here", 2},
                {NSControlKeyMask, "Move selection here", 0},
                {NSAlternateKeyMask | NSShiftKeyMask, "Move selection here", 0}};
    for (const auto& row : rows) {
        NSArray* shown = [MenuSession visibleItemsOfMenu:level withModifiers:row.held];
        NSMenuItem* first = [shown objectAtIndex:0];
        EXPECT_STREQ([[first title] UTF8String], row.title);
        EXPECT_EQ([first tag], row.tag);
        EXPECT_EQ([first image], nil);
        EXPECT_TRUE([first isEnabled]);
        EXPECT_TRUE([[shown objectAtIndex:1] isSeparatorItem]);
    }
    EXPECT_EQ([[level itemAtIndex:1] keyEquivalentModifierMask], NSUInteger{0x80000});
    EXPECT_EQ([[level itemAtIndex:2] keyEquivalentModifierMask], NSUInteger{0x20000});
}

TEST_F(MoveCopy, TheRowsStandForACopyOfTheFolder) {
    NSMenu* menu = select_two();
    dv_tree_t* copy = tree_of(item_titled(open(menu, "one"), "Move selection here"));
    EXPECT_EQ(copy, dv_->copies);
    EXPECT_EQ(copy->parent, dv_->root);
    EXPECT_EQ(copy->origin, static_cast<uint32_t>(DV_ORIGIN_MOVE_COPY));
    EXPECT_EQ(copy->kind, DV_KIND_FOLDER);
    EXPECT_EQ(copy->dir, dv_->root->dir);
    open(open(menu, "one"), "below");
    EXPECT_EQ(dv_->copies->parent, tree_of(item_titled(open(menu, "one"), "below")));
    release();
    EXPECT_EQ(dv_->copies, nullptr);
}

TEST_F(MoveCopy, TheLevelsOfACopyAreScannedFoldersOnly) {
    open(select_two(), "one");
    dv_tree_t* copy = dv_->copies;
    [controller_ populateSubFolderForElem:copy];
    ASSERT_NE(copy->children, nullptr);
    EXPECT_STREQ(copy->children->name, "below");
    EXPECT_EQ(copy->children->next, nullptr);
}

TEST_F(MoveCopy, WhatIsNoLevelHasNoRows) {
    NSMenu* menu = select_two();
    dv_tree_t* file = tree_of(item_titled(menu, "two"));
    EXPECT_EQ([controller_ dvMoveCopyElemForElem:file], nullptr);
    const Titles before = titles_of(menu);
    [controller_ insertMoveCopyElem:tree_of(item_titled(menu, "one")) forMenu:menu];
    EXPECT_EQ(titles_of(menu), before) << "the root menu has none";
    dv_tree_t* folder = dv_->root;
    folder->is_container = 0;
    EXPECT_EQ([controller_ dvMoveCopyElemForElem:folder], dv_ -> copies) << "a folder is a level";
    EXPECT_NE(dv_->copies, nullptr);
    folder->is_container = 1;
}

TEST_F(MoveCopy, ACopyIsLogged) {
    NSMenu* menu = select_two();
    const std::string log = log_of([&] { open(menu, "one"); });
    test::expect_lines(
        log, {test::formatted("moveCopyElem: %x parent: %x pparent: 0 name: %s",
                              number(dv_->copies), number(dv_->root), dv_->copies->display_name)});
    open(open(menu, "one"), "below");
    dv_tree_t* below = dv_->copies->parent;
    ASSERT_STREQ(below->name, "below");
    test::expect_lines(log_of([&] { open(open(menu, "one"), "below"); }),
                       {test::formatted("moveCopyElem: %x parent: %x pparent: %x name: below",
                                        number(dv_->copies), number(below), number(dv_->root))});
}

TEST_F(MoveCopy, PickingARowSendsTheSelectionThere) {
    NSMenu* below = open(open(select_two(), "one"), "below");
    const struct {
        const char* title;
        FourCharCode event_id;
    } rows[] = {{"Move selection here", 'move'},
                {"Copy selection here", 'clon'},
                {"Alias selection here", 'crel'}};
    for (const auto& row : rows) {
        const test::Letter letter = pick(below, row.title);
        EXPECT_EQ(letter.event_id, row.event_id);
        EXPECT_EQ(letter.destination, folder_.path("one/below"));
        // The level's own folder cannot be moved inside itself; an alias to it can be made there.
        EXPECT_EQ(letter.items, row.event_id == 'crel'
                                    ? Titles({folder_.path("one"), folder_.path("two")})
                                    : Titles({folder_.path("two")}));
    }
    EXPECT_EQ(post_.letters().size(), 3u);
}

TEST_F(MoveCopy, KeysHeldAtThePickDoNotMatter) {
    NSMenu* level = open(select_two(), "one");
    set_held_modifier_flags(NSCommandKeyMask | NSAlternateKeyMask);
    EXPECT_EQ(pick(level, "Move selection here").event_id, FourCharCode{'move'});
}

TEST_F(MoveCopy, TheDestinationIsOpenedWhenAsked) {
    set("open_after_file_op", 1);
    pick(open(select_two(), "one"), "Copy selection here");
    const auto& letters = post_.letters();
    ASSERT_EQ(letters.size(), 2u);
    EXPECT_EQ(letters[0].event_id, FourCharCode{'odoc'});
    EXPECT_EQ(letters[0].items, Titles({folder_.path("one")}));
    EXPECT_EQ(letters[1].event_id, FourCharCode{'clon'});
}

TEST_F(MoveCopy, APickIsLogged) {
    NSMenu* level = open(select_two(), "one");
    dv_tree_t* target = tree_of(item_titled(level, "Alias selection here"));
    test::expect_lines(
        log_of([&] { pick(level, "Alias selection here"); }),
        {test::formatted("Delvio: Will move [0] /copy [1]/alias [2]: 2 | to this directory: %s ",
                         target->display_name)});
}

TEST_F(MoveCopy, ALinkToAFolderIsADestination) {
    folder_.folder("target");
    folder_.folder("one");
    folder_.link("one/link", folder_.path("target"));
    NSMenu* level = open(select({folder_.path("one"), folder_.file("two")}), "one");
    NSMenu* linked = open(level, "link");
    if (has_rows(linked)) {
        EXPECT_EQ(pick(linked, "Move selection here").destination, folder_.path("one/link"));
    }
    EXPECT_TRUE(has_rows(linked));
}
