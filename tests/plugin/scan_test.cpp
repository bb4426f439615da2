#include "tree/dv_scan.h"

#include <gtest/gtest.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "plugin/file_manager.h"
#include "plugin/tree_support.h"
#include "support/temp_folder.h"
#include "support/unprivileged.h"
#include "tree/dv_level.h"
#include "tree/dv_state.h"

using test::child_named;
using test::Names;
using test::names_of;
using test::output_of;
using test::path_of;
using test::Tree;

namespace {

enum : unsigned { INVISIBLE_FLAG = 0x4000 };

class Scan : public testing::Test {
  protected:
    ~Scan() override {
        dv_set_sort_order(0);
        test::file_manager = {};
    }

    Tree scan(uint32_t flags = 0, uint32_t origin = 0) {
        return Tree(dv_build_tree(folder_.path().c_str(), 0, 1, flags, origin));
    }
    Names names(uint32_t flags = 0) {
        Tree root = scan(flags);
        return root ? names_of(root->children) : Names({"(null)"});
    }
    Tree single(const std::string& path, uint32_t flags = 0, uint32_t origin = 0) {
        return Tree(dv_build_single_elem(path.c_str(), flags, origin));
    }
    // One entry of each kind, files first and last by name.
    void make_all_kinds() {
        folder_.file("a.txt");
        folder_.folder("b");
        folder_.folder("c.app");
        folder_.folder("d.rtfd");
        folder_.file("e.txt");
    }

    test::TempFolder folder_;
};

TEST_F(Scan, GivesATemporaryRootOverTheSlashTerminatedPath) {
    folder_.file("one");
    Tree root = scan(0, DV_ORIGIN_USER_FOLDER);
    ASSERT_TRUE(root);
    EXPECT_EQ(root->kind, DV_KIND_FOLDER);
    EXPECT_EQ(root->name_len, 0);
    EXPECT_EQ(path_of(root.get(), 0, 0), folder_.path() + "/");
    EXPECT_EQ(root->origin, DV_ORIGIN_USER_FOLDER);
    const dv_tree_t* child = root->children;
    EXPECT_EQ(child->parent, root.get());
    EXPECT_EQ(child->dir, root->dir);
    EXPECT_EQ(child->origin, DV_ORIGIN_USER_FOLDER);
    EXPECT_EQ(path_of(child, 0, 0), folder_.path("one"));
}

TEST_F(Scan, APathThatEndsInASlashGetsNoSecondOne) {
    folder_.file("one");
    Tree root(dv_build_tree((folder_.path() + "/").c_str(), 0, 1, 0, 0));
    ASSERT_TRUE(root);
    EXPECT_EQ(path_of(root->children, 0, 0), folder_.path("one"));
}

TEST_F(Scan, TheChildrenOutliveTheTemporaryRoot) {
    folder_.file("one");
    dv_tree_t* root = scan().release();
    Tree children(root->children);
    dv_free_elem(root);
    EXPECT_EQ(path_of(children.get(), 0, 0), folder_.path("one"));
}

TEST_F(Scan, BeyondTheLastLevelThereIsNothing) {
    EXPECT_EQ(dv_build_tree(folder_.path().c_str(), 1, 1, 0, 0), nullptr);
    EXPECT_EQ(dv_build_tree(folder_.path().c_str(), 0, 0, 0, 0), nullptr);
}

TEST_F(Scan, ReadsOneLevelUnlessMoreAreAskedFor) {
    folder_.file("outer/inner/file");
    Tree one = scan();
    ASSERT_TRUE(one && one->children);
    EXPECT_EQ(one->children->children, nullptr);
    Tree three(dv_build_tree(folder_.path().c_str(), 0, 3, 0, 0));
    const dv_tree_t* outer = three->children;
    ASSERT_TRUE(outer->children && outer->children->children);
    EXPECT_EQ(outer->children->parent, outer);
    EXPECT_EQ(path_of(outer->children->children, 0, 0), folder_.path("outer/inner/file"));
}

TEST_F(Scan, AnEmptyFolderGivesARootWithoutChildren) {
    Tree root = scan();
    ASSERT_TRUE(root);
    EXPECT_EQ(root->children, nullptr);
}

TEST_F(Scan, APlainFileOrAMissingPathGivesNull) {
    EXPECT_EQ(dv_build_tree(folder_.file("file").c_str(), 0, 1, 0, 0), nullptr);
    EXPECT_EQ(dv_build_tree(folder_.path("missing").c_str(), 0, 1, 0, 0), nullptr);
}

TEST_F(Scan, AnUnreadableFolderGivesNull) {
    const std::string closed = folder_.folder("closed");
    chmod(closed.c_str(), 0);
    const test::Unprivileged obeying;
    EXPECT_EQ(output_of([&] { EXPECT_EQ(dv_build_tree(closed.c_str(), 0, 1, 0, 0), nullptr); }),
              "");
    EXPECT_EQ(names(), Names({"closed"}));
}

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
    if (!folder_.finder_info("ghost", INVISIBLE_FLAG)) GTEST_SKIP() << "no extended attributes";
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
    if (!folder_.finder_info("red", 6 << 1)) GTEST_SKIP() << "no extended attributes";
    Tree root = scan();
    EXPECT_EQ(child_named(root, "red")->label, 6);
    EXPECT_EQ(child_named(root, "plain")->label, 0);
}

TEST_F(Scan, EveryLabelIsReadAndNothingBesideIt) {
    for (unsigned label = 0; label <= 7; label++) {
        // All other flags, but for those that hide the file or make it an alias.
        for (const unsigned others : {0x0000u, 0x3FF1u}) {
            folder_.file("labelled");
            if (!folder_.finder_info("labelled", label << 1 | others)) {
                GTEST_SKIP() << "no extended attributes";
            }
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
    if (!folder_.finder_info("tool", 0, "APPL")) GTEST_SKIP() << "no extended attributes";
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

TEST_F(Scan, AnAliasToAFolderBecomesAFolderWithItsTarget) {
    const std::string target = folder_.folder("target");
    folder_.link("alias", "target");
    Tree root = scan();
    const dv_tree_t* alias = child_named(root, "alias");
    ASSERT_TRUE(alias);
    EXPECT_EQ(alias->kind, DV_KIND_FOLDER);
    EXPECT_EQ(alias->is_container, 1);
    EXPECT_EQ(path_of(alias, 0, 0), target);
    EXPECT_EQ(path_of(alias, 0, 1), folder_.path("alias"));
    EXPECT_EQ(alias->children, nullptr);
}

TEST_F(Scan, AnAliasToAFolderIsNotDescendedInto) {
    folder_.file("target/inside");
    folder_.link("alias", "target");
    Tree root(dv_build_tree(folder_.path().c_str(), 0, 2, 0, 0));
    EXPECT_NE(child_named(root, "target")->children, nullptr);
    EXPECT_EQ(child_named(root, "alias")->children, nullptr);
}

TEST_F(Scan, AnAliasToAFileStaysAFileWithItsTarget) {
    const std::string target = folder_.file("target");
    folder_.link("alias", target);
    Tree root = scan();
    const dv_tree_t* alias = child_named(root, "alias");
    EXPECT_EQ(alias->kind, DV_KIND_FILE);
    EXPECT_EQ(alias->is_container, 0);
    EXPECT_EQ(path_of(alias, 0, 0), target);
}

TEST_F(Scan, AnAliasToAnApplicationIsAnApplication) {
    folder_.file("tool");
    if (!folder_.finder_info("tool", 0, "APPL")) GTEST_SKIP() << "no extended attributes";
    folder_.link("alias", "tool");
    Tree root = scan();
    const dv_tree_t* alias = child_named(root, "alias");
    EXPECT_EQ(alias->kind, DV_KIND_APPLICATION);
    EXPECT_EQ(path_of(alias, 0, 0), folder_.path("tool"));
    Tree folders = scan(DV_SCAN_FOLDERS_ONLY);
    EXPECT_EQ(folders->children, nullptr);
}

TEST_F(Scan, AnAliasToAFolderThatCannotBeReadIsARootWithoutChildren) {
    const std::string closed = folder_.folder("closed");
    const std::string alias = folder_.link("alias", "closed");
    chmod(closed.c_str(), 0);
    const test::Unprivileged obeying;
    Tree root(dv_build_tree(alias.c_str(), 0, 1, 0, DV_ORIGIN_USER_FOLDER));
    ASSERT_TRUE(root);
    EXPECT_EQ(root->children, nullptr);
    EXPECT_EQ(root->kind, DV_KIND_FOLDER);
    EXPECT_EQ(root->origin, DV_ORIGIN_USER_FOLDER);
    EXPECT_EQ(path_of(root.get(), 0, 0), closed);
    EXPECT_EQ(path_of(root.get(), 0, 1), alias + "/");
}

TEST_F(Scan, ATargetsPathMayTake10240Bytes) {
    folder_.file("target");
    const std::string alias = folder_.link("alias", "target");
    test::file_manager.path = "/" + std::string(10238, 'x');
    Tree elem = single(alias);
    EXPECT_EQ(test::file_manager.path_limit, 10240u);
    EXPECT_EQ(elem->resolved_path, test::file_manager.path);
}

TEST_F(Scan, ATargetWithoutAPathLeavesTheAliasAFile) {
    folder_.folder("target");
    const std::string alias = folder_.link("alias", "target");
    test::file_manager.path_error = pathTooLongErr;
    Tree elem = single(alias);
    ASSERT_TRUE(elem);
    EXPECT_EQ(elem->kind, DV_KIND_FILE);
    EXPECT_EQ(elem->is_container, 0);
    EXPECT_EQ(elem->resolved_path, nullptr);
}

TEST_F(Scan, DanglingLinksAndLoopsStayAsFilesWithoutATarget) {
    folder_.link("dangling", "missing");
    folder_.link("loop", "loop");
    folder_.link("ping", "pong");
    folder_.link("pong", "ping");
    Tree root;
    EXPECT_EQ(output_of([&] { root = scan(); }), "");
    EXPECT_EQ(names_of(root->children), Names({"dangling", "loop", "ping", "pong"}));
    for (const dv_tree_t* child = root->children; child; child = child->next) {
        EXPECT_EQ(child->kind, DV_KIND_FILE);
        EXPECT_EQ(child->resolved_path, nullptr);
    }
}

TEST_F(Scan, PipesSocketsAndDevicesAreFiles) {
    ASSERT_EQ(mkfifo(folder_.path("pipe").c_str(), 0600), 0);
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(folder_.path("socket").size(), sizeof address.sun_path);
    strcpy(address.sun_path, folder_.path("socket").c_str());
    ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    close(fd);
    Tree root;
    EXPECT_EQ(output_of([&] { root = scan(); }), "");
    EXPECT_EQ(names_of(root->children), Names({"pipe", "socket"}));
    for (const dv_tree_t* child = root->children; child; child = child->next) {
        EXPECT_EQ(child->kind, DV_KIND_FILE);
    }
    Tree null_device = single("/dev/null");
    ASSERT_TRUE(null_device);
    EXPECT_EQ(null_device->kind, DV_KIND_FILE);
}

TEST_F(Scan, OddNamesAreKeptByteForByte) {
    const Names odd = {"new\nline", "tab\there", "esc\x1b[0m", "\xff\xfe bad", "caf\xc3\xa9", " "};
    for (const std::string& name : odd) folder_.file(name);
    Tree root;
    EXPECT_EQ(output_of([&] { root = scan(); }), "");
    for (const std::string& name : odd) {
        const dv_tree_t* child = child_named(root, name);
        ASSERT_TRUE(child) << name;
        EXPECT_EQ(path_of(child, 0, 0), folder_.path(name));
        EXPECT_STREQ(child->display_name, name.c_str());
    }
}

TEST_F(Scan, TheLongestNameThatTheFileSystemTakesIsKept) {
    const std::string name(255, 'n');
    folder_.file(name);
    EXPECT_EQ(names(), Names({name}));
}

TEST_F(Scan, AFolderRemovedMeanwhileGivesNull) {
    const std::string gone = folder_.folder("gone");
    Tree root = scan();
    std::filesystem::remove(gone);
    const std::string path = path_of(root->children, 1, 0);
    EXPECT_EQ(dv_build_tree(path.c_str(), 0, 1, 0, 0), nullptr);
}

TEST_F(Scan, EveryElementMadeIsFreed) {
    make_all_kinds();
    folder_.file(".hidden");
    folder_.link("alias", "a.txt");
    const uint32_t alive = alloc_count - free_count;
    for (uint32_t flags : {0u, 31u, uint32_t(DV_SCAN_FOLDERS_ONLY)}) scan(flags);
    dv_build_tree(folder_.path("a.txt").c_str(), 0, 1, 0, 0);
    EXPECT_EQ(alloc_count - free_count, alive);
}

// No file system here holds names of more than 255 bytes, so these go through the step that takes a
// name of the folder.
class LongName : public testing::Test {
  protected:
    Tree root_{dv_create_elem(dv_create_folder_dir("/folder/"), nullptr, 0, 0)};
    dv_level_t level_ = {root_.get(), nullptr, 0, 1, DV_SCAN_DOT_FILES, DV_ORIGIN_APP_LIST, {}, {}};
};

TEST_F(LongName, Of256BytesIsKept) {
    const std::string name(256, 'n');
    Tree elem;
    EXPECT_EQ(output_of([&] { elem.reset(dv_elem_for_name(level_, name.c_str())); }), "");
    ASSERT_TRUE(elem);
    EXPECT_EQ(elem->name, name);
    EXPECT_EQ(elem->name_len, 256);
    EXPECT_EQ(elem->origin, DV_ORIGIN_APP_LIST);
    EXPECT_EQ(path_of(elem.get(), 0, 0), "/folder/" + name);
}

TEST_F(LongName, Of257BytesIsSkippedWithTheWarning) {
    const std::string name(257, 'n');
    Tree elem;
    EXPECT_EQ(output_of([&] { elem.reset(dv_elem_for_name(level_, name.c_str())); }),
              "Delvio: Warning, file name too long - skipping entry " + name + "\n");
    EXPECT_FALSE(elem);
}

TEST_F(LongName, DotAndDotDotAreNeverElements) {
    EXPECT_EQ(dv_elem_for_name(level_, "."), nullptr);
    EXPECT_EQ(dv_elem_for_name(level_, ".."), nullptr);
    Tree dots(dv_elem_for_name(level_, "..."));
    ASSERT_TRUE(dots);
    EXPECT_EQ(dots->visible, 0);
}

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
    if (!folder_.finder_info("ghost", INVISIBLE_FLAG)) GTEST_SKIP() << "no extended attributes";
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

TEST(ScanFlags, FollowFromThePreferences) {
    const uint32_t hidden[] = {0, DV_SCAN_DOT_FILES, DV_SCAN_INVISIBLE,
                               DV_SCAN_DOT_FILES | DV_SCAN_INVISIBLE, 0};
    delvio_t state = {};
    for (uint32_t value = 0; value < 5; value++) {
        state.show_hidden_files = value;
        EXPECT_EQ(dv_get_flags(&state), hidden[value]) << value;
    }
    state = {};
    state.show_package_contents = 2;
    EXPECT_EQ(dv_get_flags(&state), DV_SCAN_PACKAGES);
    state = {};
    state.sort_order = 1;
    EXPECT_EQ(dv_get_flags(&state), DV_SCAN_MIXED);
    state.sort_order = 2;
    EXPECT_EQ(dv_get_flags(&state), 0u);
}

TEST(SortOrder, TheDefaultEqualsTheFirstRow) {
    EXPECT_EQ(memcmp(default_sort_order, sort_orders[0], sizeof default_sort_order), 0);
}

class NameOrder : public testing::Test {
  protected:
    static int compare(const char* a, const char* b) {
        dirent left = {}, right = {};
        strcpy(left.d_name, a);
        strcpy(right.d_name, b);
        const dirent* one = &left;
        const dirent* two = &right;
        const int order = dv_sort(&one, &two);
        EXPECT_EQ(dv_sort(&two, &one) < 0, order > 0);
        return (order > 0) - (order < 0);
    }
};

TEST_F(NameOrder, DigitsCompareAsNumbers) {
    EXPECT_EQ(compare("file10", "file9"), 1);
    EXPECT_EQ(compare("file09", "file9"), 0);
    EXPECT_EQ(compare("1.10", "1.9"), 1);
}

TEST_F(NameOrder, CaseMakesNoDifference) {
    EXPECT_EQ(compare("Apple", "apple"), 0);
    EXPECT_EQ(compare("B", "a"), 1);
}

TEST_F(NameOrder, BytesAreNotDecoded) {
    // As two characters, A with tilde and the copyright sign; as one, e with acute.
    EXPECT_EQ(compare("\xc3\xa9", "b"), -1);
    EXPECT_EQ(compare("\xc3\xa9", "e"), -1);
    EXPECT_EQ(compare("\xc3\xa9", "A"), 1);
    EXPECT_EQ(compare("\xe9", "e"), 1);
    EXPECT_EQ(compare("\xe9", "f"), -1);
}

TEST_F(NameOrder, PunctuationCounts) {
    EXPECT_EQ(compare("a b", "ab"), -1);
    EXPECT_EQ(compare("a b", "a_b"), -1);
    EXPECT_EQ(compare("a-b", "ab"), -1);
}

TEST_F(NameOrder, TheLongestNamesCompare) {
    const std::string a(255, 'a');
    const std::string b = std::string(254, 'a') + "b";
    EXPECT_EQ(compare(a.c_str(), a.c_str()), 0);
    EXPECT_EQ(compare(a.c_str(), b.c_str()), -1);
    EXPECT_EQ(compare("", a.c_str()), -1);
}

}  // namespace
