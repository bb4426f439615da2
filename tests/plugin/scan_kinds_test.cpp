#include "tree/dv_scan.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "plugin/scan_fixture.h"

using test::child_named;
using test::Names;
using test::names_of;
using test::output_of;
using test::Scan;
using test::Tree;

namespace {

enum : unsigned { INVISIBLE_FLAG = 0x4000 };

TEST_F(Scan, DotFilesAreDroppedUnlessAskedForAndThenDimmed) {
    folder_.file(".hidden");
    folder_.file("shown");
    EXPECT_EQ(names(0), Names({"shown"}));
    EXPECT_EQ(names(DV_SCAN_INVISIBLE), Names({"shown"}));
    EXPECT_EQ(names(DV_SCAN_DOT_FILES), Names({".hidden", "shown"}));
    Tree root = scan(DV_SCAN_DOT_FILES | DV_SCAN_INVISIBLE);
    EXPECT_EQ(child_named(root, ".hidden")->visible, 0);
    EXPECT_EQ(child_named(root, "shown")->visible, 1);
}

TEST_F(Scan, InvisibleItemsAreDroppedUnlessAskedForAndThenDimmed) {
    folder_.file("ghost");
    folder_.file("shown");
    ASSERT_TRUE(folder_.finder_info("ghost", INVISIBLE_FLAG)) << test::no_attributes;
    EXPECT_EQ(names(0), Names({"shown"}));
    EXPECT_EQ(names(DV_SCAN_DOT_FILES), Names({"shown"}));
    Tree root = scan(DV_SCAN_INVISIBLE);
    ASSERT_TRUE(child_named(root, "ghost"));
    EXPECT_EQ(child_named(root, "ghost")->visible, 0);
    EXPECT_EQ(child_named(root, "shown")->visible, 1);
}

TEST_F(Scan, TheFoldersOwnHiddenListCountsAsInvisible) {
    folder_.file(".hidden", "listed\n");
    folder_.file("listed");
    folder_.file("other");
    EXPECT_EQ(names(0), Names({"other"}));
    EXPECT_EQ(names(DV_SCAN_INVISIBLE), Names({"listed", "other"}));
}

TEST_F(Scan, LabelsComeFromTheFinderFlags) {
    folder_.file("plain");
    folder_.file("red");
    ASSERT_TRUE(folder_.finder_info("red", 6 << 1)) << test::no_attributes;
    Tree root = scan();
    EXPECT_EQ(child_named(root, "red")->label, 6);
    EXPECT_EQ(child_named(root, "plain")->label, 0);
}

TEST_F(Scan, EveryLabelIsReadAndNothingBesideIt) {
    for (unsigned label = 0; label <= 7; label++) {
        // All other flags, but for those that hide the file or make it an alias.
        for (const unsigned others : {0x0000u, 0x3FF1u}) {
            folder_.file("labelled");
            ASSERT_TRUE(folder_.finder_info("labelled", label << 1 | others))
                << test::no_attributes;
            Tree root = scan();
            EXPECT_EQ(child_named(root, "labelled")->label, label) << others;
        }
    }
}

TEST_F(Scan, AnItemWithoutFinderInformationIsKeptAndReported) {
    folder_.file("a");
    folder_.folder("b");
    test::file_manager.catalog_error = -36;
    Tree root;
    EXPECT_EQ(output_of([&] { root = scan(); }),
              "GetCatInfo returned -36\nGetCatInfo returned -36\nGetCatInfo returned -36\n");
    EXPECT_EQ(names_of(root->children), Names({"b", "a"}));
}

TEST_F(Scan, KindsAreToldApart) {
    make_all_kinds();
    Tree root = scan();
    const struct {
        const char* name;
        dv_kind_t kind;
        int is_container;
    } cases[] = {
        {"a.txt", DV_KIND_FILE, 0},
        {"b", DV_KIND_FOLDER, 1},
        {"c.app", DV_KIND_APPLICATION, 1},
        {"d.rtfd", DV_KIND_PACKAGE, 1},
    };
    for (const auto& c : cases) {
        const dv_tree_t* child = child_named(root, c.name);
        ASSERT_TRUE(child) << c.name;
        EXPECT_EQ(child->kind, c.kind) << c.name;
        EXPECT_EQ(child->is_container, c.is_container) << c.name;
    }
}

TEST_F(Scan, TheFileTypeAPPLMakesAnApplication) {
    folder_.file("tool");
    ASSERT_TRUE(folder_.finder_info("tool", 0, "APPL")) << test::no_attributes;
    Tree root = scan();
    EXPECT_EQ(child_named(root, "tool")->kind, DV_KIND_APPLICATION);
    EXPECT_EQ(child_named(root, "tool")->is_container, 0);
}

TEST_F(Scan, GroupsFollowTheOrderInUse) {
    make_all_kinds();
    const Names orders[] = {
        {"b", "c.app", "d.rtfd", "a.txt", "e.txt"},
        {"c.app", "b", "d.rtfd", "a.txt", "e.txt"},
        {"d.rtfd", "a.txt", "e.txt", "c.app", "b"},
        {"d.rtfd", "a.txt", "e.txt", "b", "c.app"},
    };
    for (uint32_t row = 0; row < DV_SORT_ORDER_COUNT; row++) {
        dv_set_sort_order(row);
        EXPECT_EQ(names(), orders[row]) << row;
    }
}

TEST_F(Scan, AMixedLevelIsOneAlphabeticalListInEveryOrder) {
    make_all_kinds();
    for (uint32_t row = 0; row < DV_SORT_ORDER_COUNT; row++) {
        dv_set_sort_order(row);
        EXPECT_EQ(names(DV_SCAN_MIXED), Names({"a.txt", "b", "c.app", "d.rtfd", "e.txt"})) << row;
    }
}

TEST_F(Scan, NamesComeInTheFindersOrderWithinAGroup) {
    for (const char* name : {"file10", "File9", "file1", "banana", "Apple"}) folder_.file(name);
    EXPECT_EQ(names(), Names({"Apple", "banana", "file1", "File9", "file10"}));
}

TEST_F(Scan, NamesThatCompareEqualAreAllKept) {
    for (const char* name : {"apple", "Apple", "APPLE"}) folder_.file(name);
    Names all = names();
    std::sort(all.begin(), all.end());
    EXPECT_EQ(all, Names({"APPLE", "Apple", "apple"}));
}

TEST_F(Scan, FoldersOnlyKeepsFoldersAndAliasesToThem) {
    make_all_kinds();
    folder_.link("to-folder", "b");
    folder_.link("to-file", "a.txt");
    folder_.link("to-nothing", "missing");
    EXPECT_EQ(names(DV_SCAN_FOLDERS_ONLY), Names({"b", "to-folder"}));
}

TEST_F(Scan, PackagesAreReadAsLevelsOnlyWhenAsked) {
    folder_.file("c.app/inside");
    Tree closed(dv_build_tree(folder_.path().c_str(), 0, 2, 0, 0));
    Tree open(dv_build_tree(folder_.path().c_str(), 0, 2, DV_SCAN_PACKAGES, 0));
    EXPECT_EQ(closed->children->children, nullptr);
    ASSERT_TRUE(open->children->children);
    EXPECT_STREQ(open->children->children->name, "inside");
}

}  // namespace
