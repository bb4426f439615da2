#include "tree/dv_scan.h"

#include <gtest/gtest.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>

#include "plugin/scan_fixture.h"
#include "support/unprivileged.h"
#include "tree/dv_level.h"

using test::child_named;
using test::Names;
using test::names_of;
using test::output_of;
using test::path_of;
using test::Scan;
using test::Tree;

namespace {

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

// No file system here allows names of more than 255 bytes, so these tests call the step that
// handles a single name.
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

}  // namespace
