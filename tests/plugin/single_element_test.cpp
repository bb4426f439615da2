#include "tree/dv_scan.h"

#include <gtest/gtest.h>

#include "plugin/scan_fixture.h"

using test::Scan;
using test::Tree;

namespace {

enum : unsigned { INVISIBLE_FLAG = 0x4000 };

class SingleElement : public Scan {};

TEST_F(SingleElement, HoldsItsWholePathInTheDirectoryRecord) {
    const std::string path = folder_.file("file.txt");
    Tree elem = single(path, 0, DV_ORIGIN_SELECTED_FILE);
    ASSERT_TRUE(elem);
    EXPECT_EQ(elem->name_len, 0);
    EXPECT_EQ(elem->dir->path, path);
    EXPECT_STREQ(elem->dir->path + elem->dir->name_offset, "file.txt");
    EXPECT_STREQ(elem->display_name, "file.txt");
    EXPECT_EQ(elem->origin, DV_ORIGIN_SELECTED_FILE);
    EXPECT_EQ(elem->kind, DV_KIND_FILE);
}

TEST_F(SingleElement, IsNullForAMissingPathAndForAnInvisibleItem) {
    EXPECT_FALSE(single(folder_.path("missing")));
    folder_.file("ghost");
    ASSERT_TRUE(folder_.finder_info("ghost", INVISIBLE_FLAG)) << test::no_attributes;
    EXPECT_FALSE(single(folder_.path("ghost")));
    Tree kept = single(folder_.path("ghost"), DV_SCAN_INVISIBLE);
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->visible, 0);
}

TEST_F(SingleElement, ANameThatBeginsWithADotIsNotHidden) {
    Tree elem = single(folder_.file(".profile"));
    ASSERT_TRUE(elem);
    EXPECT_EQ(elem->visible, 1);
}

TEST_F(SingleElement, WithFoldersOnlyFilesAreRefused) {
    folder_.folder("folder");
    folder_.file("file");
    folder_.link("to-folder", "folder");
    folder_.link("to-file", "file");
    EXPECT_TRUE(single(folder_.path("folder"), DV_SCAN_FOLDERS_ONLY));
    EXPECT_TRUE(single(folder_.path("to-folder"), DV_SCAN_FOLDERS_ONLY));
    EXPECT_FALSE(single(folder_.path("file"), DV_SCAN_FOLDERS_ONLY));
    EXPECT_FALSE(single(folder_.path("to-file"), DV_SCAN_FOLDERS_ONLY));
    EXPECT_TRUE(single(folder_.path("to-file")));
}

class DisplayName : public Scan {
  protected:
    std::string shown(const std::string& name) {
        Tree elem = single(folder_.file(name));
        return elem ? elem->display_name : "(null)";
    }
};

TEST_F(DisplayName, OfFortyCharactersShowsBothEnds) {
    EXPECT_EQ(shown("0123456789abcdefGHIJKLMNOPQRSTUVWXYZghij"),
              "0123456789abcdef\xe2\x80\xa6OPQRSTUVWXYZghij");
}

TEST_F(DisplayName, AShortenedOneKeepsCharactersOfEveryLength) {
    // The first and the last of one, two, three and four bytes.
    const std::string some = "\x01\x7e\u0080\u07ff\u0800\ufffd\U00010000\U0010fffd";
    const std::string ends = some + "123456";
    ASSERT_EQ(shown(ends + std::string(20, 'x') + ends), ends + "\u2026" + ends);
}

TEST_F(DisplayName, OfThirtyTwoCharactersIsKeptWhole) {
    const std::string name = "0123456789abcdef0123456789abcdef";
    EXPECT_EQ(shown(name), name);
    EXPECT_EQ(shown(name + "X"),
              "0123456789abcdef\xe2\x80\xa6"
              "123456789abcdefX");
}

TEST_F(DisplayName, IsCountedInCharactersAndNotInBytes) {
    std::string thirty_two, forty, end;
    for (int i = 0; i < 32; i++) thirty_two += "\xe6\xbc\xa2";
    forty = thirty_two;
    for (int i = 0; i < 8; i++) forty += "\xe5\xad\x97";
    EXPECT_EQ(shown(thirty_two), thirty_two);
    EXPECT_EQ(shown(forty), forty.substr(0, 48) + "\xe2\x80\xa6" + forty.substr(forty.size() - 48));
}

TEST_F(DisplayName, ACutNeverLeavesHalfACharacter) {
    // Each of these takes two UTF-16 units, so both cuts fall inside one.
    std::string name = "x";
    for (int i = 0; i < 20; i++) name += "\xf0\x9f\x98\x80";
    name += "y";
    std::string expected = "x";
    for (int i = 0; i < 7; i++) expected += "\xf0\x9f\x98\x80";
    expected += "\xe2\x80\xa6";
    for (int i = 0; i < 7; i++) expected += "\xf0\x9f\x98\x80";
    expected += "y";
    EXPECT_EQ(shown(name), expected);
}

TEST_F(DisplayName, OfANameThatIsNoTextIsTheNameItself) {
    const std::string path = folder_.file("bad \xff name");
    Tree root = scan();
    EXPECT_STREQ(root->children->display_name, "bad \xff name");
    EXPECT_EQ(root->children->owns_display_name, 0);
}

}  // namespace
