#include "menus/DVDelvio+Population.h"

#include <filesystem>

#include "items/DVMenu.h"
#include "items/DVMenuItem.h"
#include "plugin/menu_fixture.h"
#include "support/heap.h"
#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

namespace {

using test::expect_lines;
using test::formatted;
using test::item_titled;
using test::titles_of;
using test::Titles;

class Population : public test::MenuTest {
  protected:
    std::vector<std::string> folders(int count) {
        std::vector<std::string> paths;
        for (int i = 0; i < count; i++) paths.push_back(folder_.folder("f" + std::to_string(i)));
        return paths;
    }
    // Adds the element that the preference "folders" would make from a path.
    void add_custom_folder(const std::string& path, uint32_t more_origin = 0) {
        dv_tree_t** slot = &dv_->custom;
        while (*slot) slot = &(*slot)->next;
        *slot = dv_build_tree(path.c_str(), 0, 1, dv_get_flags(dv_),
                              DV_ORIGIN_USER_FOLDER | more_origin);
    }
};

}  // namespace

TEST_F(Population, SelectedRootsStandAboveTheHostsItems) {
    [host_menu_ addItemWithTitle:@"Open" action:nullptr keyEquivalent:@""];
    NSMenu* menu = select({folder_.folder("a"), folder_.file("b")});
    EXPECT_EQ(menu, host_menu_);
    EXPECT_EQ(titles_of(menu), Titles({"a", "-", "b", "b", "-", "Open"}));
    EXPECT_FALSE([menu autoenablesItems]);
}

TEST_F(Population, NoSelectionGivesASeparatorAlone) {
    EXPECT_EQ(titles_of(take_over()), Titles({"-"}));
}

TEST_F(Population, TenRootsAreListed) {
    NSMenu* menu = select(folders(10));
    EXPECT_EQ([menu numberOfItems], 11);
    EXPECT_NE(item_titled(menu, "f0"), nil);
}

TEST_F(Population, ElevenRootsGoIntoOneItem) {
    NSMenu* menu = select(folders(11));
    EXPECT_EQ(titles_of(menu), Titles({"11 selected items", "-"}));
    NSMenuItem* item = [menu itemAtIndex:0];
    EXPECT_EQ([item image], nil);
    EXPECT_FALSE([item isAlternate]);
    EXPECT_EQ([[item submenu] numberOfItems], 11);
    EXPECT_EQ([static_cast<DVMenu*>([item submenu]) dvFolderLevel], 0);
}

TEST_F(Population, OpeningTheCollapsedItemAddsNothing) {
    const std::vector<std::string> paths = folders(11);
    folder_.file("f0/inside");
    NSMenu* menu = select(paths);
    EXPECT_EQ([open(menu, "11 selected items") numberOfItems], 11);
    EXPECT_EQ(titles_of(open(open(menu, "11 selected items"), "f0")),
              Titles({"Move selection here", "Copy selection here", "Alias selection here", "-",
                      "inside", "inside", "inside"}));
}

TEST_F(Population, TheThresholdIsASetting) {
    set("rootMenuCollapseThreshold", 2);
    EXPECT_EQ(titles_of(select(folders(3))), Titles({"3 selected items", "-"}));
}

TEST_F(Population, ALevelIsFilledWhenItOpensAndOnce) {
    const std::string path = folder_.folder("a");
    folder_.file("a/one");
    NSMenu* menu = select({path});
    DVMenu* level = static_cast<DVMenu*>([item_titled(menu, "a") submenu]);
    ASSERT_NE(level, nil);
    EXPECT_EQ([level numberOfItems], 0);
    EXPECT_FALSE([level dvDidPopulate]);
    EXPECT_EQ([level delegate], controller_);

    [controller_ menuWillOpen:level];
    EXPECT_EQ(titles_of(level), Titles({"one", "one", "one"}));
    EXPECT_TRUE([level dvDidPopulate]);
    folder_.file("a/two");
    const std::string log = log_of([&] { [controller_ menuWillOpen:level]; });
    EXPECT_EQ(titles_of(level), Titles({"one", "one", "one"}));
    expect_lines(log, {formatted("Delvio: Building new level: %p %p", level, dv_->root),
                       formatted("Delvio: Populating menu with %p; already populated? 1",
                                 dv_->root->children),
                       formatted("Delvio: Level built: %p %p", level, dv_->root)});
    EXPECT_EQ(log.find("Inserting items"), std::string::npos) << log;
}

TEST_F(Population, TheItemsOfAFileShareWhatTheyHaveInCommon) {
    const std::string path = folder_.folder("a");
    const int files = 2000;
    for (int i = 0; i < files; i++) folder_.file("a/a document " + std::to_string(i) + ".txt");
    NSMenu* menu = select({path});
    const size_t before = test::memory_in_use();
    @autoreleasepool {
        EXPECT_EQ([open(menu, "a") numberOfItems], 3 * files);
    }
    // One item, two alternates without objects, and of each one only: element, title, icon.
    const size_t a_file = (test::memory_in_use() - before) / files;
    EXPECT_GT(a_file, 400);
    EXPECT_LT(a_file, 800);
}

TEST_F(Population, LevelsBelowAreReadOnlyWhenTheyOpen) {
    const std::string path = folder_.folder("a");
    folder_.folder("a/b");
    NSMenu* menu = select({path});
    NSMenu* level = open(menu, "a");
    folder_.file("a/b/late");
    NSMenu* below = open(level, "b");
    EXPECT_EQ(titles_of(below), Titles({"late", "late", "late"}));
    EXPECT_EQ([static_cast<DVMenu*>(level) dvFolderLevel], 1);
    EXPECT_EQ([static_cast<DVMenu*>(below) dvFolderLevel], 2);
}

TEST_F(Population, ChildrenKnowTheirParent) {
    const std::string path = folder_.folder("a");
    folder_.folder("a/b");
    NSMenu* level = open(select({path}), "a");
    dv_tree_t* child = [static_cast<DVMenuItem*>(item_titled(level, "b")) tree];
    EXPECT_EQ(child->parent, dv_->root);
}

TEST_F(Population, AnEmptyFolderSaysSo) {
    NSMenu* menu = select({folder_.folder("empty")});
    NSMenu* level = [item_titled(menu, "empty") submenu];
    dv_tree_t* elem = dv_->root;
    const std::string log = log_of([&] { [controller_ menuWillOpen:level]; });
    expect_lines(log,
                 {formatted("Delvio: Building new level: %p %p", level, elem),
                  "Delvio: Folder is empty", formatted("Delvio: Level built: %p %p", level, elem)});
    ASSERT_EQ(titles_of(level), Titles({"Folder is empty"}));
    NSMenuItem* item = [level itemAtIndex:0];
    EXPECT_FALSE([item isEnabled]);
    EXPECT_EQ([item action], static_cast<SEL>(nullptr));
    EXPECT_STREQ([[item keyEquivalent] UTF8String], "");
    [controller_ menuWillOpen:level];
    EXPECT_EQ([level numberOfItems], 1);
}

TEST_F(Population, AFolderThatWentAwayIsEmpty) {
    const std::string path = folder_.folder("a");
    folder_.folder("a/gone");
    NSMenu* level = open(select({path}), "a");
    std::filesystem::remove(path + "/gone");
    EXPECT_EQ(titles_of(open(level, "gone")), Titles({"Folder is empty"}));
}

TEST_F(Population, ALinkToAFolderOpensAsALevel) {
    folder_.file("target/inside");
    const std::string path = folder_.folder("a");
    folder_.link("a/link", folder_.path("target"));
    NSMenu* level = open(open(select({path}), "a"), "link");
    EXPECT_EQ(titles_of(level), Titles({"inside", "inside", "inside"}));
    dv_tree_t* inside = [static_cast<DVMenuItem*>([level itemAtIndex:0]) tree];
    EXPECT_EQ(std::string([[DVDelvio stringPathForTree:inside] UTF8String]),
              folder_.path("target/inside"))
        << "read at its target";
    EXPECT_EQ(inside->parent, [static_cast<DVMenu*>(level) tree]);
}

TEST_F(Population, AMenuWithoutAnElementStaysEmpty) {
    take_over();
    DVMenu* menu = [[[DVMenu alloc] initWithTitle:@"" andTree:nullptr] autorelease];
    EXPECT_EQ(log_of([&] { [controller_ menuWillOpen:menu]; }),
              formatted("Delvio: No tree associated with menu %p\n", menu));
    EXPECT_EQ([menu numberOfItems], 0);
    EXPECT_FALSE([menu dvDidPopulate]);
}

TEST_F(Population, CustomFoldersStandAboveTheSelection) {
    const std::string custom = folder_.folder("custom");
    set("custom_folder_order", 1);
    take_over();
    add_custom_folder(custom);
    [controller_ updateProxyMenu];
    EXPECT_EQ(titles_of(host_menu_), Titles({"custom", "-"}));
}

TEST_F(Population, CustomFoldersBelowNoSelectionAreNotSetApart) {
    const std::string custom = folder_.folder("custom");
    set("custom_folder_order", 0);
    take_over();
    add_custom_folder(custom);
    [controller_ updateProxyMenu];
    EXPECT_EQ(titles_of(host_menu_), Titles({"custom", "-"}));
}

TEST_F(Population, CustomFoldersAboveOrBelowASelectionAreSetApart) {
    const std::string custom = folder_.folder("custom"), chosen = folder_.folder("chosen");
    const struct {
        int order;
        Titles expected;
    } rows[] = {{1, {"custom", "-", "chosen", "-"}},
                {0, {"chosen", "-", "custom", "-"}},
                {2, {"chosen", "-"}}};
    for (const auto& row : rows) {
        set("custom_folder_order", row.order);
        select({chosen});
        add_custom_folder(custom);
        [controller_ updateProxyMenu];
        EXPECT_EQ(titles_of(host_menu_), row.expected) << "order " << row.order;
        release();
        EXPECT_EQ(titles_of(host_menu_), Titles()) << "order " << row.order;
    }
}

TEST_F(Population, TheHostsMenuBecomesASubmenuWhenAsked) {
    [host_menu_ addItemWithTitle:@"Open" action:nullptr keyEquivalent:@""];
    set("finderInSeparateSubmenu", 1);
    NSMenu* menu = select({folder_.folder("a")});
    EXPECT_NE(menu, host_menu_);
    EXPECT_EQ(titles_of(menu), Titles({"a", "-", "Finder"}));
    NSMenuItem* finder = item_titled(menu, "Finder");
    EXPECT_EQ([finder submenu], host_menu_);
    EXPECT_TRUE([finder isEnabled]);
    EXPECT_EQ(titles_of(host_menu_), Titles({"Open"}));
}

TEST_F(Population, PathsAndUrlsOfElements) {
    folder_.file("target");
    const std::string link = folder_.link("link", folder_.path("target"));
    dv_tree_t* elem = dv_build_single_elem(link.c_str(), 0, 0);
    EXPECT_STREQ([[DVDelvio stringPathForTree:elem] UTF8String], folder_.path("target").c_str());
    EXPECT_STREQ([[[DVDelvio urlForTree:elem] path] UTF8String], folder_.path("target").c_str());
    dv_free_tree(elem);
    EXPECT_EQ([DVDelvio stringPathForTree:nullptr], nil);
    EXPECT_EQ([DVDelvio urlForTree:nullptr], nil);
}

TEST_F(Population, TenThousandEntriesFillALevel) {
    const std::string path = folder_.folder("many");
    // Links to one file are created faster than files.
    const std::string file = folder_.file("file");
    for (int i = 0; i < 10000; i++) {
        std::filesystem::create_hard_link(file, path + "/file" + std::to_string(i));
    }
    NSMenu* level = open(select({path}), "many");
    // Each file with its alternates.
    ASSERT_EQ([level numberOfItems], 30000);
    EXPECT_STREQ([[[level itemAtIndex:0] title] UTF8String], "file0");
    EXPECT_STREQ([[[level itemAtIndex:29997] title] UTF8String], "file9999");
}
