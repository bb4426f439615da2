#include "menus/DVDelvio+Items.h"

#include <string.h>

#include "items/DVMenu.h"
#include "items/DVMenuItem.h"
#include "menus/DVDelvio+Population.h"
#include "plugin/menu_fixture.h"
#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

namespace {

using test::alternate_of;
using test::item_titled;
using test::titles_of;
using test::Titles;

class Items : public test::MenuTest {
  protected:
    // A level with a folder, an application bundle, a package and a file.
    std::string mixed_folder() {
        const std::string path = folder_.folder("mixed");
        folder_.folder("mixed/dir");
        folder_.file("mixed/Edit.app/inside");
        folder_.file("mixed/part.bundle/inside");
        folder_.file("mixed/text");
        return path;
    }
    NSMenu* open_mixed() { return open(select({mixed_folder()}), "mixed"); }

    // A plain menu with one folder, which need not exist.
    NSMenu* menu_of_folder(const char* parent, const char* name, const char* shown = nullptr) {
        take_over();
        dv_dir_t* dir = dv_create_folder_dir(parent);
        dv_->root = dv_create_elem(dir, name, static_cast<int32_t>(strlen(name)), 0);
        dv_->root->kind = DV_KIND_FOLDER;
        dv_->root->is_container = 1;
        if (shown) {
            dv_->root->display_name = strdup(shown);
            dv_->root->owns_display_name = 1;
        }
        NSMenu* menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
        [controller_ insertItems:dv_->root forMenu:menu];
        return menu;
    }
    // The level at a path as if it came from `origin`, in a menu of its own.
    NSMenu* level_of(const std::string& path, uint32_t origin) {
        take_over();
        dv_->open_with = dv_build_tree(path.c_str(), 0, 1, dv_get_flags(dv_), origin);
        DVMenu* menu = [[[DVMenu alloc] initWithTitle:@"" andTree:dv_->open_with] autorelease];
        [menu setDvOpenWithIsAttachedToRoot:1];
        [controller_ menuWillOpen:menu];
        return menu;
    }
};

}  // namespace

TEST_F(Items, KindsAreSetApartAndApplicationsHaveAHeading) {
    NSMenu* menu = open_mixed();
    EXPECT_EQ(titles_of(menu), Titles({"dir", "-", "Applications", "Edit.app", "Edit.app", "-",
                                       "part.bundle", "part.bundle", "text", "text", "text"}));
    NSMenuItem* heading = item_titled(menu, "Applications");
    EXPECT_FALSE([heading isEnabled]);
    EXPECT_EQ([heading action], static_cast<SEL>(nullptr));
    EXPECT_STREQ([[heading keyEquivalent] UTF8String], "");
}

TEST_F(Items, FilesAreSetApartFromFoldersButNotFromPackages) {
    const std::string path = folder_.folder("a");
    folder_.folder("a/dir");
    folder_.file("a/text");
    EXPECT_EQ(titles_of(open(select({path}), "a")), Titles({"dir", "-", "text", "text", "text"}));
}

TEST_F(Items, OneListHasNoKindSeparators) {
    set("sort_order", 1);
    EXPECT_EQ(titles_of(open_mixed()), Titles({"dir", "Edit.app", "Edit.app", "part.bundle",
                                               "part.bundle", "text", "text", "text"}));
}

TEST_F(Items, GroupsWithoutSeparatorsBySortOrderTwo) {
    set("sort_order", 2);
    set("intra_sort_order", 1);
    EXPECT_EQ(titles_of(open_mixed()), Titles({"Edit.app", "Edit.app", "dir", "part.bundle",
                                               "part.bundle", "text", "text", "text"}));
}

TEST_F(Items, FoldersAfterApplicationsAreSetApart) {
    set("intra_sort_order", 1);
    EXPECT_EQ(titles_of(open_mixed()),
              Titles({"Edit.app", "Edit.app", "-", "dir", "-", "part.bundle", "part.bundle", "text",
                      "text", "text"}));
}

TEST_F(Items, AClosedApplicationShowsItsContentsWithOption) {
    NSMenu* menu = open_mixed();
    NSMenuItem* closed = item_titled(menu, "Edit.app");
    EXPECT_EQ([closed submenu], nil);
    NSMenuItem* contents = alternate_of(menu, "Edit.app");
    ASSERT_NE(contents, nil);
    EXPECT_EQ([contents keyEquivalentModifierMask], static_cast<NSUInteger>(NSAlternateKeyMask));
    EXPECT_NE([contents image], nil);
    EXPECT_EQ(titles_of(open(contents)), Titles({"inside", "inside", "inside"}));
}

TEST_F(Items, AClosedPackageShowsItsContentsWithOption) {
    NSMenu* menu = open_mixed();
    EXPECT_EQ([item_titled(menu, "part.bundle") submenu], nil);
    EXPECT_EQ(titles_of(open(alternate_of(menu, "part.bundle"))),
              Titles({"inside", "inside", "inside"}));
}

TEST_F(Items, PackagesOpenAsLevelsWhenAsked) {
    set("show_package_contents", 1);
    NSMenu* menu = open_mixed();
    EXPECT_EQ(alternate_of(menu, "Edit.app"), nil);
    EXPECT_EQ(titles_of(open(menu, "Edit.app")), Titles({"inside", "inside", "inside"}));
    EXPECT_EQ(titles_of(open(menu, "part.bundle")), Titles({"inside", "inside", "inside"}));
}

TEST_F(Items, ADocumentHasItsOpenWithSubmenuWithShift) {
    NSMenu* menu = open_mixed();
    NSMenuItem* item = item_titled(menu, "text");
    EXPECT_EQ([item submenu], nil);
    EXPECT_TRUE([item isEnabled]);
    NSMenuItem* alternate = alternate_of(menu, "text");
    ASSERT_NE(alternate, nil);
    EXPECT_EQ([alternate keyEquivalentModifierMask], static_cast<NSUInteger>(NSShiftKeyMask));
    EXPECT_NE([alternate image], nil);
    DVMenu* submenu = static_cast<DVMenu*>([alternate submenu]);
    EXPECT_STREQ([[submenu title] UTF8String], "Open with...");
    EXPECT_EQ([submenu dvOpenWithIsAttachedToRoot], 0);
}

TEST_F(Items, ADocumentOfTheRootMenuHasItsOpenWithSubmenuAtOnce) {
    NSMenu* menu = select({folder_.file("text")});
    EXPECT_EQ(titles_of(menu), Titles({"text", "text", "-"}));
    DVMenu* submenu = static_cast<DVMenu*>([item_titled(menu, "text") submenu]);
    ASSERT_NE(submenu, nil);
    EXPECT_EQ([submenu dvOpenWithIsAttachedToRoot], 1);
}

TEST_F(Items, ADocumentOfTheRootMenuHasItsOpenWithSubmenuWithShiftWhenAsked) {
    set("autoOpenWithMenu", 0);
    NSMenu* menu = select({folder_.file("text")});
    EXPECT_EQ(titles_of(menu), Titles({"text", "text", "text", "-"}));
    EXPECT_EQ([item_titled(menu, "text") submenu], nil);
    DVMenu* submenu = static_cast<DVMenu*>([alternate_of(menu, "text") submenu]);
    EXPECT_EQ([submenu dvOpenWithIsAttachedToRoot], 1);
}

TEST_F(Items, AFoldersItemKeepsItsOwnAction) {
    NSMenuItem* item = item_titled(open_mixed(), "dir");
    ASSERT_NE([item submenu], nil);
    EXPECT_TRUE(sel_isEqual([item action], @selector(dvItemSelected:)));
    EXPECT_EQ([item target], controller_);
}

TEST_F(Items, OnlyFoldersStandInTheRootMenuWhenAsked) {
    set("only_folders_in_main_menu", 1);
    NSMenu* menu = nil;
    const std::string log = log_of([&] {
        menu = select({folder_.file("text"), folder_.folder("dir")});
    });
    EXPECT_EQ(titles_of(menu), Titles({"dir", "-"}));
    test::expect_lines(
        log, {test::formatted("Delvio: Inserting items %p into menu %p..", dv_->root, host_menu_),
              "Delvio: Skiping 'text'", "Delvio: Done updating menu"});
}

TEST_F(Items, OnlyFoldersIsARuleOfTheRootMenuAlone) {
    set("only_folders_in_main_menu", 1);
    EXPECT_NE(item_titled(open_mixed(), "text"), nil);
}

TEST_F(Items, ASkippedElementStillCountsAsThePreviousKind) {
    set("only_folders_in_main_menu", 1);
    folder_.file("Edit.app/inside");
    NSMenu* menu = select({folder_.folder("a"), folder_.path("Edit.app"), folder_.folder("b")});
    EXPECT_EQ(titles_of(menu), Titles({"a", "-", "b", "-"}));
}

TEST_F(Items, ASkippedElementDoesNotCountAsThePreviousOrigin) {
    set("only_folders_in_main_menu", 1);
    set("sort_order", 2);  // no separators by kind
    take_over();
    dv_dir_t* dir = dv_create_folder_dir("/");
    dv_tree_t *head = nullptr, *tail = nullptr;
    for (const char* name : {"a", "skipped", "b"}) {
        dv_update_ptrs(dv_create_elem(dir, name, static_cast<int32_t>(strlen(name)), 0), &tail,
                       &head);
        tail->kind = DV_KIND_FOLDER;
    }
    head->next->kind = DV_KIND_FILE;
    head->next->origin = DV_ORIGIN_SELECTED_FILE;
    dv_->root = head;
    [controller_ removeRootItems];
    [controller_ insertItems:head forMenu:host_menu_];
    EXPECT_EQ(titles_of(host_menu_), Titles({"a", "b"}));
}

TEST_F(Items, AnApplicationListSkipsDocumentsAndDisablesEmptyFolders) {
    const std::string path = folder_.folder("listed");
    folder_.file("listed/document");
    folder_.file("listed/part.bundle/inside");
    folder_.folder("listed/empty");
    folder_.file("listed/full/x.app/inside");
    folder_.file("listed/Edit.app/inside");
    NSMenu* menu = level_of(path, DV_ORIGIN_APP_LIST);
    EXPECT_EQ(titles_of(menu), Titles({"empty", "full", "-", "Applications", "Edit.app"}));
    NSMenuItem* empty = item_titled(menu, "empty");
    EXPECT_FALSE([empty isEnabled]);
    EXPECT_EQ([empty image], nil);
    EXPECT_EQ([empty submenu], nil);
    DVMenu* full = static_cast<DVMenu*>([item_titled(menu, "full") submenu]);
    EXPECT_EQ([full dvOpenWithIsAttachedToRoot], 1);
    EXPECT_EQ([full dvFolderLevel], 1);
    EXPECT_NE([full tree]->children, nullptr) << "read at once";
    EXPECT_EQ([item_titled(menu, "Edit.app") submenu], nil);
}

TEST_F(Items, ANewOriginIsSetApart) {
    const std::string path = folder_.folder("a");
    folder_.folder("a/one");
    folder_.folder("a/two");
    take_over();
    dv_->root = dv_build_tree(path.c_str(), 0, 1, 0, 0);
    dv_->root->children->next->origin = DV_ORIGIN_USER_FOLDER;
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    [controller_ insertItems:dv_->root->children forMenu:menu];
    EXPECT_EQ(titles_of(menu), Titles({"one", "-", "two"}));
}

TEST_F(Items, ASeparatorFollowsAMarkedElement) {
    const std::string path = folder_.folder("a");
    folder_.folder("a/one");
    folder_.folder("a/three");
    folder_.folder("a/two");
    take_over();
    dv_->root = dv_build_tree(path.c_str(), 0, 1, 0, DV_ORIGIN_USER_FOLDER);
    dv_->root->children->origin |= DV_ORIGIN_SEPARATOR_AFTER;
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    [controller_ insertItems:dv_->root->children forMenu:menu];
    EXPECT_EQ(titles_of(menu), Titles({"one", "-", "three", "two"}));
    DVMenu* level = static_cast<DVMenu*>([[menu itemAtIndex:0] submenu]);
    EXPECT_EQ([level dvFolderLevel], 1) << "a plain menu's levels begin at 1";
}

TEST_F(Items, TheNetworkShowsItsContentsWithOption) {
    NSMenu* menu = menu_of_folder("/", "Network");
    EXPECT_EQ(titles_of(menu), Titles({"Network", "Network"}));
    EXPECT_EQ([[menu itemAtIndex:0] submenu], nil);
    EXPECT_NE([alternate_of(menu, "Network") submenu], nil);
}

TEST_F(Items, AFolderThatIsJustCalledNetworkOpensAtOnce) {
    NSMenu* menu = menu_of_folder("/home/", "Network");
    EXPECT_EQ(titles_of(menu), Titles({"Network"}));
    EXPECT_NE([[menu itemAtIndex:0] submenu], nil);
}

TEST_F(Items, TheNetworksFolderUnderAnotherNameOpensAtOnce) {
    NSMenu* menu = menu_of_folder("/", "Network", "Netz");
    EXPECT_EQ(titles_of(menu), Titles({"Netz"}));
    EXPECT_NE([[menu itemAtIndex:0] submenu], nil);
}

TEST_F(Items, AnEmptyChainAddsNothing) {
    take_over();
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    [controller_ insertItems:nullptr forMenu:menu];
    EXPECT_EQ([menu numberOfItems], 0);
}
