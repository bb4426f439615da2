// Elements whose file the platform cannot describe, or describes oddly.
#include "tree/dv_scan.h"

#include <gtest/gtest.h>
#include <string.h>

#include "plugin/scan_fixture.h"
#include "support/dv_log.h"

using test::child_named;
using test::Names;
using test::path_of;
using test::Scan;
using test::Tree;

namespace {

TEST_F(Scan, AnElementWhoseKindCannotBeToldIsAFile) {
    folder_.folder("inside");
    test::file_manager.item_error = fnfErr;
    Tree root = scan();
    const dv_tree_t* inside = child_named(root, "inside");
    ASSERT_TRUE(inside);
    EXPECT_EQ(inside->kind, DV_KIND_FILE);
    EXPECT_EQ(inside->is_container, 0);
    EXPECT_STREQ(inside->display_name, "inside");
}

TEST_F(Scan, WhatThePlatformCallsAnApplicationIsOneWhateverItsType) {
    folder_.file("tool");
    test::file_manager.item_flags = kLSItemInfoIsApplication;
    Tree root = scan();
    EXPECT_EQ(child_named(root, "tool")->kind, DV_KIND_APPLICATION);
}

TEST_F(Scan, AnAliasWhoseTargetCannotBeDescribedStillLeadsThere) {
    const std::string target = folder_.folder("target");
    folder_.link("alias", "target");
    test::file_manager.item_error = fnfErr;
    Tree root = scan();
    const dv_tree_t* alias = child_named(root, "alias");
    EXPECT_EQ(alias->kind, DV_KIND_FOLDER);
    EXPECT_EQ(path_of(alias, 0, 0), target);
}

TEST_F(Scan, AnAliasThatIsNotFollowedHasNoTarget) {
    folder_.file("target");
    folder_.link("alias", "target");
    test::file_manager.is_no_alias = true;
    Tree root = scan();
    EXPECT_EQ(path_of(child_named(root, "alias"), 0, 0), folder_.path("alias"));
}

TEST_F(Scan, ADisplayNameThatIsNoTextLeavesTheFilesOwnName) {
    folder_.file("plain");
    test::file_manager.display_name = u"half \xD83D";
    Tree root = scan();
    EXPECT_STREQ(child_named(root, "plain")->display_name, "plain");
}

TEST_F(Scan, ALongDisplayNameLosesTheHalvesOfItsCutCharacters) {
    folder_.file("plain");
    test::file_manager.display_name = std::u16string(15, u'a') + u"\U0001F600" + u"cut" +
                                      u"\U0001F600" + std::u16string(15, u'b');
    Tree root = scan();
    EXPECT_EQ(child_named(root, "plain")->display_name,
              std::string(15, 'a') + "\xE2\x80\xA6" + std::string(15, 'b'));
}

TEST_F(Scan, AnElementThatIsDescribedAgainHasItsNewName) {
    const std::string path = folder_.file("plain");
    Tree elem = single(path);
    for (const char16_t* name : {u"one", u"two"}) {
        test::file_manager.display_name = name;
        EXPECT_EQ(dv_process_finder_info(path.c_str(), 0, elem.get()), DV_ELEM_KEEP);
    }
    EXPECT_STREQ(elem->display_name, "two");
}

TEST_F(Scan, NamesThatCannotBeComparedAreAllThere) {
    for (const char* name : {"b", "c", "a"}) folder_.file(name);
    test::file_manager.collation_error = paramErr;
    Names all = names();
    std::sort(all.begin(), all.end());
    EXPECT_EQ(all, Names({"a", "b", "c"}));
}

}  // namespace
