#include "menus/DVDelvio+OpenWith.h"

#include <host/modifier_keys.h>
#include <host/process.h>
#include <stdio.h>
#include <stdlib.h>

#include "items/DVMenu.h"
#include "items/DVMenuItem.h"
#include "menus/DVDelvio+Selection.h"
#include "plugin/menu_fixture.h"
#include "support/dv_log.h"
#include "support/recording_program.h"
#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

namespace {

using test::alternate_of;
using test::item_titled;
using test::string_of;
using test::titles_of;
using test::Titles;

const NSUInteger option = NSAlternateKeyMask;

// The open-with folder contains one application that records its arguments, a folder with the same
// application, and something that is not an application.
class OpenWith : public test::MenuTest {
  protected:
    static void SetUpTestSuite() {
        program_ = new test::RecordingProgram({"application/x-of-no-test"}, "%F");
    }
    OpenWith() {
        program_->forget();
        const std::string entry =
            test::read_file(getenv("XDG_DATA_HOME") + std::string("/applications/record.desktop"));
        folder_.file("apps/record.desktop", entry);
        folder_.file("apps/more/record.desktop", entry);
        folder_.file("apps/readme", "no application");
        declare_applications_folder(folder_.path("apps").c_str());
        set("open_with_path", string_of(folder_.path("apps")));
        set("runningAppsInOpenWithMenu", 0);
    }
    ~OpenWith() override {
        set_held_modifier_flags(0);
        declare_applications_folder(nullptr);
    }

    // The open-with submenu of a document of the root menu, or of a level.
    NSMenu* root_menu(const char* title) { return open(host_menu_, title); }
    NSMenu* deep_menu(const char* folder, const char* title) {
        return open(alternate_of(open(host_menu_, folder), title));
    }
    // Sets running applications, as if the desktop had reported them.
    void run(const std::vector<std::string>& paths) {
        dv_->runningAppsInOpenWithMenu = 1;
        dv_tree_t* tail = nullptr;
        for (const std::string& path : paths) {
            dv_update_ptrs(dv_build_single_elem(path.c_str(), 0, DV_ORIGIN_APP_LIST), &tail,
                           &dv_->running_apps);
        }
    }
    Titles picked(NSMenuItem* item, NSUInteger modifiers = 0) {
        set_held_modifier_flags(modifiers);
        [controller_ dvItemSelected:item];
        set_held_modifier_flags(0);
        const Titles arguments = program_->wait();
        program_->forget();
        return arguments;
    }

    static test::RecordingProgram* program_;
};

test::RecordingProgram* OpenWith::program_;

}  // namespace

TEST_F(OpenWith, TheRootMenusFirstLineSpeaksOfTheSelectionAndWithOptionOfTheItem) {
    select({folder_.file("text")});
    NSMenu* menu = root_menu("text");
    EXPECT_EQ(titles_of(menu), Titles({"Open selection with...", "Open with...", "-", "more", "-",
                                       "Applications", "Record"}));
    for (int i = 0; i < 2; i++) {
        EXPECT_FALSE([[menu itemAtIndex:i] isEnabled]);
        EXPECT_EQ([[menu itemAtIndex:i] action], static_cast<SEL>(nullptr));
    }
    EXPECT_FALSE([[menu itemAtIndex:0] isAlternate]);
    EXPECT_TRUE([[menu itemAtIndex:1] isAlternate]);
    EXPECT_EQ([[menu itemAtIndex:1] keyEquivalentModifierMask], option);
}

TEST_F(OpenWith, ADeeperMenusFirstLineSpeaksOfTheItemAndWithOptionOfTheSelection) {
    folder_.file("dir/text");
    select({folder_.path("dir")});
    NSMenu* menu = deep_menu("dir", "text");
    EXPECT_EQ(titles_of(menu), Titles({"Open with...", "Open selection with...", "-", "more", "-",
                                       "Applications", "Record"}));
    EXPECT_EQ([[menu itemAtIndex:1] keyEquivalentModifierMask], option);
}

TEST_F(OpenWith, OpeningTheMenuAgainAddsNothing) {
    select({folder_.file("text")});
    const NSInteger count = [root_menu("text") numberOfItems];
    EXPECT_EQ([root_menu("text") numberOfItems], count);
}

TEST_F(OpenWith, RunningApplicationsStandInASubmenuAboveTheFolders) {
    const std::string one = folder_.folder("One.app"), two = folder_.folder("Two.app");
    select({folder_.file("text")});
    run({two, one});
    NSMenu* menu = root_menu("text");
    EXPECT_EQ(titles_of(menu),
              Titles({"Open selection with...", "Open with...", "-", "Running apps", "-", "more",
                      "-", "Applications", "Record"}));
    NSMenuItem* item = item_titled(menu, "Running apps");
    EXPECT_TRUE([item isEnabled]);
    EXPECT_EQ([item image], nil);
    DVMenu* running = static_cast<DVMenu*>([item submenu]);
    EXPECT_STREQ([[running title] UTF8String], "Running apps");
    EXPECT_EQ([running dvOpenWithIsAttachedToRoot], 1);
    EXPECT_EQ(titles_of(running), Titles({"Two.app", "One.app"})) << "filled at once, as given";
}

TEST_F(OpenWith, WithoutAFolderTheFirstLinesAndTheRunningApplicationsRemain) {
    set("open_with_path", string_of(folder_.path("missing")));
    const std::string one = folder_.folder("One.app");
    select({folder_.file("text")});
    run({one});
    EXPECT_EQ(titles_of(root_menu("text")),
              Titles({"Open selection with...", "Open with...", "-", "Running apps", "-"}));
}

TEST_F(OpenWith, AnEmptyFolderSaysSo) {
    set("open_with_path", string_of(folder_.folder("none")));
    select({folder_.file("text")});
    EXPECT_EQ(titles_of(root_menu("text")),
              Titles({"Open selection with...", "Open with...", "-", "Folder is empty"}));
}

TEST_F(OpenWith, TheSubmenuIsTheItemsAndTheControllersAndItsFlagSaysWhereItStands) {
    select({folder_.file("text")});
    NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:@"" action:nullptr
                                            keyEquivalent:@""] autorelease];
    DVMenu* menu = [controller_ createOpenWithSubmenuForItem:item];
    EXPECT_EQ([item submenu], menu);
    EXPECT_EQ([menu delegate], controller_);
    EXPECT_EQ([menu tree], dv_ -> open_with);
    EXPECT_STREQ([[menu title] UTF8String], "Open with...");
    EXPECT_EQ([menu dvOpenWithIsAttachedToRoot], 0);
    menu = [controller_ createOpenWithSubmenuForItem:item isRootMenu:YES];
    EXPECT_EQ([menu dvOpenWithIsAttachedToRoot], 1);
}

TEST_F(OpenWith, AnApplicationOfTheRootMenuOpensTheSelectionAndWithOptionTheItem) {
    const std::string folder = folder_.folder("dir"), a = folder_.file("a"), b = folder_.file("b");
    select({folder, a, b});
    NSMenuItem* application = item_titled(root_menu("b"), "Record");
    EXPECT_EQ(picked(application), Titles({folder, a, b}));
    EXPECT_EQ(picked(application, option), Titles({b}));
}

TEST_F(OpenWith, InADeeperMenuTheTwoAreSwapped) {
    const std::string inside = folder_.file("dir/text"), a = folder_.file("a");
    select({folder_.path("dir"), a});
    NSMenuItem* application = item_titled(deep_menu("dir", "text"), "Record");
    EXPECT_EQ(picked(application), Titles({inside}));
    EXPECT_EQ(picked(application, option), Titles({folder_.path("dir"), a}));
}

TEST_F(OpenWith, AnApplicationOfAFolderInTheMenuFollowsTheMenu) {
    const std::string inside = folder_.file("dir/text"), a = folder_.file("a");
    select({folder_.path("dir"), a});
    NSMenuItem* application = item_titled(open(root_menu("a"), "more"), "Record");
    EXPECT_EQ(picked(application, option), Titles({a}));
    application = item_titled(open(deep_menu("dir", "text"), "more"), "Record");
    EXPECT_EQ(picked(application), Titles({inside}));
}

TEST_F(OpenWith, ARunningApplicationFollowsTheMenu) {
    const std::string inside = folder_.file("dir/text"), a = folder_.file("a");
    select({folder_.path("dir"), a});
    run({folder_.path("apps/record.desktop")});
    NSMenu* running = [item_titled(root_menu("a"), "Running apps") submenu];
    EXPECT_EQ(picked(item_titled(running, "Record"), option), Titles({a}));
    running = [item_titled(deep_menu("dir", "text"), "Running apps") submenu];
    EXPECT_EQ(picked(item_titled(running, "Record")), Titles({inside}));
}

TEST_F(OpenWith, UserFoldersAreNoPartOfTheSelection) {
    const std::string user = folder_.folder("user"), a = folder_.file("a");
    set("folders", @[ string_of(user) ]);
    select({a});
    EXPECT_EQ(picked(item_titled(root_menu("a"), "Record")), Titles({a}));
}

TEST_F(OpenWith, AnApplicationThatBelongsToNoItemOpensNothing) {
    const std::string a = folder_.file("a");
    select({a});
    DVMenu* menu = [[[DVMenu alloc] initWithTitle:@"" andTree:dv_->open_with] autorelease];
    DVMenuItem* item = [DVMenuItem createAutoreleasedItemForTree:dv_->open_with->children->next
                                                          target:controller_
                                                       withTitle:@"alone"
                                                    andModifiers:0];
    [menu addItem:item];
    [controller_ dvItemSelected:item];
    // Opened afterwards: the other one would have been seen before it.
    EXPECT_EQ(picked(item_titled(root_menu("a"), "Record")), Titles({a}));
}

TEST_F(OpenWith, AnApplicationBelowAnItemWithoutAnElementOpensNothing) {
    const std::string a = folder_.file("a");
    select({a});
    DVMenuItem* owner = [[[DVMenuItem alloc] initWithTitle:@"owner"
                                                    action:nullptr
                                             keyEquivalent:@""] autorelease];
    NSMenu* above = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    [above addItem:owner];
    [owner setSubmenu:menu];
    DVMenuItem* item = [DVMenuItem createAutoreleasedItemForTree:dv_->open_with->children->next
                                                          target:controller_
                                                       withTitle:@"alone"
                                                    andModifiers:0];
    [menu addItem:item];
    const std::string log = log_of([&] { [controller_ dvItemSelected:item]; });
    test::expect_lines(log, {test::formatted("Delvio: Open parent item with.. %p %p  NOT FOUND",
                                             owner, static_cast<void*>(nullptr))});
    // Opened afterwards: the other one would have been seen before it.
    EXPECT_EQ(picked(item_titled(root_menu("a"), "Record")), Titles({a}));
}

TEST_F(OpenWith, WithoutRunningApplicationsThereIsNoSubmenuOfThem) {
    select({folder_.file("a")});
    dv_->runningAppsInOpenWithMenu = 1;
    dv_->running_apps = nullptr;
    EXPECT_EQ(item_titled(root_menu("a"), "Running apps"), nil);
}

TEST_F(OpenWith, PickingAnApplicationIsLogged) {
    select({folder_.file("a")});
    NSMenuItem* application = item_titled(open(root_menu("a"), "more"), "Record");
    test::expect_lines(log_of([&] { [controller_ dvItemSelected:application]; }),
                       {"Delvio: Option key down: 0 Selected item is in root menu: 1",
                        "Delvio: Open selection with.. Attached to root? 1"});
    set_held_modifier_flags(option);
    const std::string log = log_of([&] { [controller_ dvItemSelected:application]; });
    NSMenuItem* owner = item_titled(host_menu_, "a");
    test::expect_lines(log, {"Delvio: Option key down: 1 Selected item is in root menu: 1",
                             "Delvio: Still didn't find the correct elem, scanning parent tree..",
                             test::formatted("Delvio: Open parent item with.. %p %p a", owner,
                                             [static_cast<DVMenuItem*>(owner) tree])});
}
