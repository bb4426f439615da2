#include "menus/DVDelvio+Selection.h"

#include <AppKit/ModifierKeys.h>

#include "menus/DVDelvio+Population.h"
#include "menus/DVMenuItem.h"
#include "plugin/menu_fixture.h"
#include "support/recording_program.h"
#include "tree/dv_tree.h"

namespace {

using test::item_titled;
using test::titles_of;
using test::titles_t;
using test::urls_of;

class Selection : public test::MenuTest {
  protected:
    ~Selection() override { SetHeldModifierFlags(0); }

    titles_t root_names() {
        titles_t names;
        for (dv_tree_t* elem = dv_->root; elem; elem = elem->next) {
            names.push_back([DVMenuItem nameForTree:elem]);
        }
        return names;
    }
};

}  // namespace

TEST_F(Selection, FoldersStandBeforeFilesEachInTheHostsOrder) {
    select({folder_.file("3"), folder_.folder("b"), folder_.file("1"), folder_.folder("a"),
            folder_.file("2")});
    EXPECT_EQ(root_names(), titles_t({"b", "a", "3", "1", "2"}));
    EXPECT_EQ(titles_of(host_menu_), titles_t({"b", "a", "-", "3", "3", "1", "1", "2", "2", "-"}));
}

TEST_F(Selection, ASecondListChangesNothing) {
    select({folder_.folder("first")});
    [controller_ setSelectedFiles:urls_of({folder_.folder("second")})];
    EXPECT_EQ(root_names(), titles_t({"first"}));
    EXPECT_EQ(titles_of(host_menu_), titles_t({"first", "-"}));
}

TEST_F(Selection, TheNextMenuTakesItsOwn) {
    select({folder_.folder("first")});
    release();
    EXPECT_EQ(dvDidGetURLs, 0);
    select({folder_.folder("second")});
    EXPECT_EQ(root_names(), titles_t({"second"}));
}

TEST_F(Selection, WithoutATakenMenuItIsIgnored) {
    [controller_ setSelectedFiles:urls_of({folder_.folder("a")})];
    EXPECT_EQ(dv_->root, nullptr);
    EXPECT_EQ(dvDidGetURLs, 0);
}

TEST_F(Selection, OtherObjectsAreIgnoredAndLeaveTheMenuOpenForAList) {
    take_over();
    [controller_ setSelectedFiles:@[ @"text", @1 ]];
    EXPECT_EQ(dvDidGetURLs, 0);
    NSMutableArray* mixed = [NSMutableArray arrayWithObject:@"text"];
    [mixed addObjectsFromArray:urls_of({folder_.folder("a")})];
    [controller_ setSelectedFiles:mixed];
    EXPECT_EQ(root_names(), titles_t({"a"}));
}

TEST_F(Selection, AFileThatIsGoneStillCountsAsTheList) {
    take_over();
    [controller_ setSelectedFiles:urls_of({folder_.path("missing")})];
    EXPECT_EQ(dv_->root, nullptr);
    EXPECT_EQ(dvDidGetURLs, 1);
    EXPECT_EQ(titles_of(host_menu_), titles_t({"-"}));
}

TEST_F(Selection, MoreThanOneItemIsAMultipleSelection) {
    select({folder_.folder("a")});
    EXPECT_EQ(dv_->multiple_selection, 0);
    release();
    select({folder_.folder("a"), folder_.file("b")});
    EXPECT_EQ(dv_->multiple_selection, 1);
    release();
    take_over();
    EXPECT_EQ(dv_->multiple_selection, 0);
}

TEST_F(Selection, WhatCannotBeMadeDoesNotCount) {
    select({folder_.file("a"), folder_.path("missing"), folder_.path("gone")});
    EXPECT_EQ(root_names(), titles_t({"a"}));
    EXPECT_EQ([[controller_ valueForKey:@"rootMenuSelectionCount"] intValue], 1);
    EXPECT_EQ(dv_->multiple_selection, 0);
}

TEST_F(Selection, FoldersAndFilesCountAlike) {
    select({folder_.file("a"), folder_.folder("b"), folder_.file("c")});
    EXPECT_EQ([[controller_ valueForKey:@"rootMenuSelectionCount"] intValue], 3);
}

TEST_F(Selection, FilesOfTheSelectionAreMarked) {
    select({folder_.file("a"), folder_.folder("b")});
    EXPECT_EQ(dv_->root->origin, 0u);
    EXPECT_EQ(dv_->root->next->origin, static_cast<uint32_t>(DV_ORIGIN_SELECTED_FILE));
}

TEST_F(Selection, PickingAFileOpensIt) {
    const test::RecordingProgram opener({"text/plain"});
    const std::string path = folder_.file("note with blank.txt", "text\n");
    NSMenu* menu = select({path});
    [controller_ dvItemSelected:[menu itemAtIndex:0]];
    EXPECT_EQ(opener.wait(), titles_t({path}));
}

TEST_F(Selection, PickingAnAliasOpensItsTarget) {
    const test::RecordingProgram opener({"text/plain"});
    const std::string target = folder_.file("target.txt", "text\n");
    NSMenu* menu = select({folder_.link("alias", target)});
    [controller_ dvItemSelected:[menu itemAtIndex:0]];
    EXPECT_EQ(opener.wait(), titles_t({target}));
}

TEST_F(Selection, ACommandClickOpensNothing) {
    const test::RecordingProgram opener({"text/plain"});
    const std::string first = folder_.file("first.txt", "text\n");
    const std::string second = folder_.file("second.txt", "text\n");
    NSMenu* menu = select({first, second});
    SetHeldModifierFlags(NSCommandKeyMask);
    [controller_ dvItemSelected:item_titled(menu, "first.txt")];
    SetHeldModifierFlags(0);
    // Opened after it, so that the other would have been seen before.
    [controller_ dvItemSelected:item_titled(menu, "second.txt")];
    EXPECT_EQ(opener.wait(), titles_t({second}));
}

TEST_F(Selection, ItemsOfOthersDoNothingWhenPicked) {
    NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:@"" action:nullptr
                                            keyEquivalent:@""] autorelease];
    [controller_ dvItemSelected:item];
    [controller_ dvItemSelected:nil];
    DVMenuItem* ours = static_cast<DVMenuItem*>([select({folder_.folder("a")}) itemAtIndex:0]);
    [ours setTree:nullptr];
    [controller_ dvItemSelected:ours];
    EXPECT_EQ([ours tree], nullptr);
}
