#include "menus/DVDelvio+Selection.h"

#include <host/modifier_keys.h>

#include "items/DVMenuItem.h"
#include "menus/DVDelvio+Population.h"
#include "plugin/menu_fixture.h"
#include "support/recording_program.h"
#include "tree/dv_tree.h"

namespace {

using test::expect_lines;
using test::formatted;
using test::item_titled;
using test::titles_of;
using test::Titles;
using test::urls_of;

class Selection : public test::MenuTest {
  protected:
    ~Selection() override { set_held_modifier_flags(0); }

    Titles root_names() {
        Titles names;
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
    EXPECT_EQ(root_names(), Titles({"b", "a", "3", "1", "2"}));
    EXPECT_EQ(titles_of(host_menu_), Titles({"b", "a", "-", "3", "3", "1", "1", "2", "2", "-"}));
}

TEST_F(Selection, ASecondListChangesNothing) {
    select({folder_.folder("first")});
    [controller_ setSelectedFiles:urls_of({folder_.folder("second")})];
    EXPECT_EQ(root_names(), Titles({"first"}));
    EXPECT_EQ(titles_of(host_menu_), Titles({"first", "-"}));
}

TEST_F(Selection, TheNextMenuTakesItsOwn) {
    select({folder_.folder("first")});
    release();
    EXPECT_EQ(dvDidGetURLs, 0);
    select({folder_.folder("second")});
    EXPECT_EQ(root_names(), Titles({"second"}));
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
    EXPECT_EQ(root_names(), Titles({"a"}));
}

TEST_F(Selection, AFileThatIsGoneStillCountsAsTheList) {
    take_over();
    [controller_ setSelectedFiles:urls_of({folder_.path("missing")})];
    EXPECT_EQ(dv_->root, nullptr);
    EXPECT_EQ(dvDidGetURLs, 1);
    EXPECT_EQ(titles_of(host_menu_), Titles({"-"}));
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
    EXPECT_EQ(root_names(), Titles({"a"}));
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
    EXPECT_EQ(opener.wait(), Titles({path}));
}

TEST_F(Selection, PickingAnAliasOpensItsTarget) {
    const test::RecordingProgram opener({"text/plain"});
    const std::string target = folder_.file("target.txt", "text\n");
    NSMenu* menu = select({folder_.link("alias", target)});
    [controller_ dvItemSelected:[menu itemAtIndex:0]];
    EXPECT_EQ(opener.wait(), Titles({target}));
}

TEST_F(Selection, ACommandClickOpensNothing) {
    const test::RecordingProgram opener({"text/plain"});
    const std::string first = folder_.file("first.txt", "text\n");
    const std::string second = folder_.file("second.txt", "text\n");
    NSMenu* menu = select({first, second});
    set_held_modifier_flags(NSCommandKeyMask);
    [controller_ dvItemSelected:item_titled(menu, "first.txt")];
    set_held_modifier_flags(0);
    // Opened afterwards: the other one would have been seen before it.
    [controller_ dvItemSelected:item_titled(menu, "second.txt")];
    EXPECT_EQ(opener.wait(), Titles({second}));
}

TEST_F(Selection, TakingTheSelectionIsLogged) {
    const std::string folder = folder_.folder("dir"), file = folder_.file("text");
    take_over();
    NSArray* files = [urls_of({folder, file, folder_.path("gone")})
        arrayByAddingObject:[NSURL URLWithString:@"mailto:somebody"]];
    const char* description = [[files description] UTF8String];
    const auto url = [&](NSUInteger index) {
        return formatted("Delvio: is URL? 1 : %s",
                         [[[files objectAtIndex:index] description] UTF8String]);
    };
    const std::string log = log_of([&] { [controller_ setSelectedFiles:files]; });
    dv_tree_t *first = dv_->root, *last = dv_->root->next;
    expect_lines(
        log, {formatted("Delvio: Set selected files. Have URLS: 0 Is invoked: 1  Files: %s",
                        description),
              "Delvio: Handling selected files..", url(0), "Delvio: Add folder '" + folder + "'",
              url(1), "Delvio: Add   file 'text'", url(2), "Delvio: Add   file 'NONE-1?'", url(3),
              "Delvio: Did get any URLs? 1", "Delvio: Updating menu..",
              formatted("Delvio: Order: 1 Ptrs: (nil) | %p %p | %p %p", first, first, last, last),
              "Delvio: Done updating menu.."});
    EXPECT_EQ(log_of([&] { [controller_ setSelectedFiles:files]; }),
              formatted("Delvio: Set selected files. Have URLS: 1 Is invoked: 1  Files: %s\n",
                        description));
}

TEST_F(Selection, AUrlWithoutAPathIsSkippedAndLogged) {
    take_over();
    // The name is not valid text, so its address has no path.
    NSURL* url = [NSURL URLWithString:@"file:///tmp/%FF%FE"];
    ASSERT_EQ([[url path] UTF8String], static_cast<const char*>(nullptr));
    NSArray* files = @[ url, @"text" ];
    const std::string log = log_of([&] { [controller_ setSelectedFiles:files]; });
    expect_lines(log,
                 {"Delvio: Warning, failed to get path from URL?", "Delvio: Did get any URLs? 0"});
    EXPECT_EQ(log.find("Updating menu"), std::string::npos) << log;
    EXPECT_EQ(dvDidGetURLs, 0);
}

TEST_F(Selection, AUrlWithoutAPathIsSkippedWithoutALineWhereNothingIsLogged) {
    take_over();
    NSArray* files = @[ [NSURL URLWithString:@"file:///tmp/%FF%FE"] ];
    EXPECT_EQ(log_of([&] { [controller_ setSelectedFiles:files]; }, 0), "");
    EXPECT_EQ(dv_->root, nullptr);
}

TEST_F(Selection, PickingIsLogged) {
    const test::RecordingProgram opener({"text/plain"});
    const std::string path = folder_.file("note.txt", "text\n");
    NSMenu* menu = select({path});
    NSMenuItem* item = [menu itemAtIndex:0];
    const std::string picked =
        formatted("Delvio: Selected item %p\n"
                  "Delvio: The selected item has title 'note.txt' and flags 8\n",
                  item);
    EXPECT_EQ(log_of([&] { [controller_ dvItemSelected:item]; }),
              picked + "Delvio: Regular open of selected item at '" + path + "'\n");
    EXPECT_EQ(opener.wait(), Titles({path}));
    set_held_modifier_flags(NSCommandKeyMask);
    EXPECT_EQ(log_of([&] { [controller_ dvItemSelected:item]; }),
              picked + "Delvio: Selected item with command key down - is drag tap not working?\n");
}

TEST_F(Selection, AnItemWhosePathIsNoTextIsNotOpened) {
    DVMenuItem* item = static_cast<DVMenuItem*>([select({folder_.file("a")}) itemAtIndex:0]);
    dv_tree_t* elem = dv_create_elem(dv_create_folder_dir("/tmp/"), "\xff\xfe", 2, 0);
    [item setTree:elem];
    test::expect_lines(log_of([&] { [controller_ dvItemSelected:item]; }),
                       {"Delvio: WARNING: Regular open of selected item, but no path!"});
    dv_free_elem(elem);
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
