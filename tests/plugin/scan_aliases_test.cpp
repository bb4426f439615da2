#include "tree/dv_scan.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "plugin/scan_fixture.h"
#include "support/unprivileged.h"

using test::child_named;
using test::Names;
using test::names_of;
using test::output_of;
using test::path_of;
using test::Scan;
using test::Tree;

namespace {

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
    ASSERT_TRUE(folder_.finder_info("tool", 0, "APPL")) << test::no_attributes;
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

}  // namespace
