#include "tree/dv_tree.h"

#include <gtest/gtest.h>
#include <string.h>

#include "plugin/tree_support.h"
#include "support/dv_log.h"
#include "support/temp_folder.h"

using test::Names;
using test::names_of;
using test::output_of;
using test::path_of;
using test::Tree;

namespace {

dv_tree_t* elem_in(dv_dir_t* dir, const char* name) {
    return dv_create_elem(dir, name, static_cast<int32_t>(strlen(name)), 0);
}

dv_tree_t* elem_named(const char* name) { return elem_in(dv_create_folder_dir("/a/b/"), name); }

std::string pointer_text(const void* pointer) {
    char text[32];
    snprintf(text, sizeof text, "%p", pointer);
    return text;
}

TEST(DirRecord, TheNameStartsAfterTheSlashBeforeIt) {
    const struct {
        dv_dir_t* (*create)(const char*);
        const char* path;
        uint32_t name_offset;
    } cases[] = {
        {dv_create_folder_dir, "/a/bc/", 3}, {dv_create_folder_dir, "/a/", 0},
        {dv_create_folder_dir, "/", 0},      {dv_create_single_dir, "/a/bc", 3},
        {dv_create_single_dir, "/a", 0},     {dv_create_single_dir, "", 0},
        {dv_create_single_dir, "a/b", 2},    {dv_create_single_dir, "/a/", 3},
    };
    for (const auto& c : cases) {
        dv_dir_t* dir = c.create(c.path);
        EXPECT_EQ(dir->name_offset, c.name_offset) << c.path;
        EXPECT_STREQ(dir->path, c.path);
        EXPECT_EQ(dir->path_len, strlen(c.path));
        EXPECT_EQ(dir->refcount, 0u);
        free(dir);
    }
}

TEST(Element, ANewOneIsAVisibleFileUnderItsOwnName) {
    dv_dir_t* dir = dv_create_folder_dir("/a/b/");
    const uint32_t allocated = alloc_count;
    Tree elem(dv_create_elem(dir, "name and more", 4, DV_ORIGIN_USER_FOLDER));
    EXPECT_EQ(alloc_count, allocated + 1);
    EXPECT_EQ(dir->refcount, 1u);
    EXPECT_STREQ(elem->name, "name");
    EXPECT_EQ(elem->name_len, 4);
    EXPECT_EQ(elem->display_name, elem->name);
    EXPECT_EQ(elem->owns_display_name, 0);
    EXPECT_EQ(elem->kind, DV_KIND_FILE);
    EXPECT_EQ(elem->visible, 1);
    EXPECT_EQ(elem->origin, DV_ORIGIN_USER_FOLDER);
    EXPECT_EQ(elem->resolved_path, nullptr);
    EXPECT_EQ(elem->next, nullptr);
}

TEST(Element, ANameLengthBelowOneMeansNoName) {
    Tree none(dv_create_elem(dv_create_folder_dir("/a/"), "ignored", 0, 0));
    Tree negative(dv_create_elem(dv_create_folder_dir("/a/"), "ignored", -3, 0));
    EXPECT_EQ(none->name_len, 0);
    EXPECT_STREQ(none->name, "");
    EXPECT_EQ(negative->name_len, 0);
    EXPECT_STREQ(negative->display_name, "");
}

TEST(ElementPath, WithoutANameItIsExactlyTheFoldersPath) {
    Tree elem(dv_create_elem(dv_create_folder_dir("/a/b/"), nullptr, 0, 0));
    EXPECT_EQ(path_of(elem.get(), 0, 0), "/a/b/");
    EXPECT_EQ(path_of(elem.get(), 1, 0), "/a/b//");
}

TEST(ElementPath, JoinsFolderAndName) {
    Tree elem(elem_named("file"));
    EXPECT_EQ(path_of(elem.get(), 0, 0), "/a/b/file");
    EXPECT_EQ(path_of(elem.get(), 1, 0), "/a/b/file/");
    EXPECT_EQ(path_of(nullptr, 1, 0), "(null)");
}

TEST(ElementPath, AnAliasGivesItsTargetUnlessToldToIgnoreIt) {
    Tree elem(elem_named("alias"));
    elem->resolved_path = strdup("/x/y");
    EXPECT_EQ(path_of(elem.get(), 1, 0), "/x/y");
    EXPECT_EQ(path_of(elem.get(), 0, 0), "/x/y");
    EXPECT_EQ(path_of(elem.get(), 0, 1), "/a/b/alias");
}

TEST(ElementCopy, SharesTheFolderAndLeavesVisibilityAndLabelBehind) {
    Tree elem(elem_named("source"));
    elem->kind = DV_KIND_FOLDER;
    elem->is_container = 1;
    elem->label = 5;
    elem->origin = DV_ORIGIN_APP_LIST;
    elem->aux = 77;
    elem->parent = elem->children = elem->next = nullptr;
    elem->resolved_path = strdup("/x");
    const uint32_t allocated = alloc_count;
    Tree copy(dv_copy_elem(elem.get()));
    EXPECT_EQ(alloc_count, allocated + 1);
    EXPECT_EQ(copy->dir, elem->dir);
    EXPECT_EQ(elem->dir->refcount, 2u);
    EXPECT_STREQ(copy->name, "source");
    EXPECT_EQ(copy->display_name, copy->name);
    EXPECT_EQ(copy->kind, DV_KIND_FOLDER);
    EXPECT_EQ(copy->is_container, 1);
    EXPECT_EQ(copy->origin, DV_ORIGIN_APP_LIST);
    EXPECT_EQ(copy->aux, 77u);
    EXPECT_EQ(copy->visible, 0);
    EXPECT_EQ(copy->label, 0);
    EXPECT_STREQ(copy->resolved_path, "/x");
    EXPECT_NE(copy->resolved_path, elem->resolved_path);
}

TEST(ElementCopy, IsUnlinked) {
    Tree parent(elem_named("parent"));
    parent->children = elem_named("child");
    parent->children->parent = parent.get();
    parent->next = elem_named("sibling");
    Tree copy(dv_copy_elem(parent.get()));
    EXPECT_EQ(copy->children, nullptr);
    EXPECT_EQ(copy->next, nullptr);
    Tree child_copy(dv_copy_elem(parent->children));
    EXPECT_EQ(child_copy->parent, nullptr);
}

TEST(ElementCopy, OwnsItsDisplayNameAndOutlivesTheSource) {
    Tree elem(elem_named("source"));
    elem->display_name = strdup("Shown");
    elem->owns_display_name = 1;
    Tree copy(dv_copy_elem(elem.get()));
    EXPECT_NE(copy->display_name, elem->display_name);
    elem.reset();
    EXPECT_STREQ(copy->display_name, "Shown");
    EXPECT_EQ(copy->owns_display_name, 1);
    EXPECT_EQ(path_of(copy.get(), 0, 0), "/a/b/source");
}

TEST(ElementCopy, OfAnElementWithoutANameHasNone) {
    Tree elem(dv_create_elem(dv_create_single_dir("/a/b"), nullptr, 0, 0));
    Tree copy(dv_copy_elem(elem.get()));
    EXPECT_EQ(copy->name_len, 0);
    EXPECT_EQ(path_of(copy.get(), 0, 0), "/a/b");
}

TEST(FreeTree, FreesAChainWithAllBelowItAndEachFolderOnce) {
    dv_dir_t* top = dv_create_folder_dir("/top/");
    Tree keeper(elem_in(top, "keeper"));
    dv_tree_t* head = nullptr;
    dv_tree_t* tail = nullptr;
    for (const char* name : {"one", "two", "three"}) {
        dv_tree_t* elem = elem_in(top, name);
        dv_dir_t* below = dv_create_folder_dir("/top/below/");
        elem->children = elem_in(below, "first");
        elem->children->next = elem_in(below, "second");
        dv_update_ptrs(elem, &tail, &head);
    }
    EXPECT_EQ(top->refcount, 4u);
    const uint32_t freed = free_count;
    dv_free_tree(head);
    EXPECT_EQ(free_count, freed + 9);
    EXPECT_EQ(top->refcount, 1u);  // the sanitizers watch over the records below
}

TEST(FreeTree, ALongChainNeedsNoDeepStack) {
    dv_dir_t* dir = dv_create_folder_dir("/a/");
    dv_tree_t* head = nullptr;
    dv_tree_t* tail = nullptr;
    for (int i = 0; i < 1000000; i++) dv_update_ptrs(elem_in(dir, "n"), &tail, &head);
    const uint32_t freed = free_count;
    dv_free_tree(head);
    EXPECT_EQ(free_count, freed + 1000000);
}

TEST(FreeElement, LeavesChildrenAndSiblings) {
    dv_tree_t* root = elem_named("root");
    Tree child(elem_in(root->dir, "child"));
    Tree sibling(elem_in(root->dir, "sibling"));
    root->children = child.get();
    root->next = sibling.get();
    dv_free_elem(root);
    EXPECT_EQ(child->dir->refcount, 2u);
    EXPECT_EQ(path_of(sibling.get(), 0, 0), "/a/b/sibling");
}

TEST(PrintTree, WritesOnePathALineDepthFirst) {
    Tree root(dv_create_elem(dv_create_folder_dir("/a/"), nullptr, 0, 0));
    root->children = elem_in(root->dir, "one");
    root->children->children = elem_in(dv_create_folder_dir("/a/one/"), "deep");
    root->children->next = elem_in(root->dir, "two");
    EXPECT_EQ(output_of([&] { dv_print_tree(root.get(), 0); }),
              "/a/\n/a/one\n/a/one/deep\n/a/two\n");
}

TEST(UpdatePointers, AppendsAndIgnoresNull) {
    dv_tree_t* head = nullptr;
    dv_tree_t* tail = nullptr;
    dv_update_ptrs(nullptr, &tail, &head);
    EXPECT_EQ(head, nullptr);
    for (const char* name : {"one", "two", "three"}) dv_update_ptrs(elem_named(name), &tail, &head);
    Tree chain(head);
    EXPECT_EQ(names_of(head), Names({"one", "two", "three"}));
    EXPECT_STREQ(tail->name, "three");
    dv_update_ptrs(nullptr, &tail, &head);
    EXPECT_STREQ(tail->name, "three");
}

TEST(UpdatePointers, AHeadWithoutATailWarnsAndStays) {
    Tree first(elem_named("first"));
    Tree second(elem_named("second"));
    dv_tree_t* head = first.get();
    dv_tree_t* tail = nullptr;
    EXPECT_EQ(output_of([&] { dv_update_ptrs(second.get(), &tail, &head); }),
              "Delvio: Warning, we have a root pointer, but we haven't got a prev ptr?\n");
    EXPECT_EQ(head, first.get());
    EXPECT_EQ(tail, second.get());
    EXPECT_EQ(first->next, nullptr);
}

TEST(Forest, ANullSlotChangesNothing) {
    Tree forest(elem_named("forest"));
    dv_tree_t* slot = nullptr;
    EXPECT_EQ(dv_add_to_forest(&slot, forest.get(), 2), forest.get());
    EXPECT_EQ(dv_add_to_forest(&slot, nullptr, 0), nullptr);
}

TEST(Forest, ASecondMenusChainGoesToTheEnd) {
    dv_tree_t* slot = elem_named("one");
    dv_tree_t* forest = dv_add_to_forest(&slot, nullptr, 2);
    EXPECT_EQ(slot, nullptr);
    slot = elem_named("two");
    slot->next = elem_named("three");
    forest = dv_add_to_forest(&slot, forest, 3);
    EXPECT_EQ(slot, nullptr);
    Tree chain(forest);
    EXPECT_EQ(names_of(forest), Names({"one", "two", "three"}));
}

TEST(Forest, WithOneMenuTheSlotIsClearedWithAWarning) {
    Tree forest(elem_named("forest"));
    Tree dropped(elem_named("dropped"));
    dv_tree_t* slot = dropped.get();
    dv_tree_t* result = nullptr;
    EXPECT_EQ(output_of([&] { result = dv_add_to_forest(&slot, forest.get(), 1); }),
              "Delvio: Odd; we apparently have an invalid root pointer: " +
                  pointer_text(dropped.get()) + "\n");
    EXPECT_EQ(result, forest.get());
    EXPECT_EQ(forest->next, nullptr);
    EXPECT_EQ(slot, nullptr);
}

class ElementReference : public testing::Test {
  protected:
    Tree elem_at(const std::string& path) {
        return Tree(dv_create_elem(dv_create_single_dir(path.c_str()), nullptr, 0, 0));
    }

    static std::string path_in(const FSRef& ref) {
        UInt8 path[1024] = {};
        return FSRefMakePath(&ref, path, sizeof path) ? "" : reinterpret_cast<char*>(path);
    }

    test::TempFolder folder_;
    FSRef ref_ = {};
    FSSpec spec_ = {};
};

TEST_F(ElementReference, NamesTheElementsOwnLocation) {
    folder_.file("target");
    Tree elem = elem_at(folder_.link("alias", "target"));
    elem->resolved_path = strdup(folder_.path("target").c_str());
    EXPECT_EQ(dv_fsref_for_elem(elem.get(), &ref_), 1);
    EXPECT_EQ(path_in(ref_), folder_.path("alias"));
}

TEST_F(ElementReference, AMissingFileGivesZeroAndALineOnlyWithLoggingOn) {
    Tree elem = elem_at(folder_.path("missing"));
    int result = 1;
    EXPECT_EQ(output_of([&] { result = dv_fsref_for_elem(elem.get(), &ref_); }), "");
    EXPECT_EQ(result, 0);
    dvEnableDebugOutput = 1;
    EXPECT_EQ(output_of([&] { dv_fsref_for_elem(elem.get(), &ref_); }),
              "Delvio: FSPathMakeRef failed: -43 for path '" + folder_.path("missing") + "'\n");
    dvEnableDebugOutput = 0;
    EXPECT_EQ(dv_fsref_for_elem(nullptr, &ref_), 0);
}

TEST_F(ElementReference, AnFSSpecAnswersTheOtherWayRound) {
    Tree present = elem_at(folder_.file("present"));
    Tree missing = elem_at(folder_.path("missing"));
    EXPECT_EQ(dv_elem_to_fsspec(present.get(), &spec_), 0);
    EXPECT_EQ(dv_elem_to_fsspec(missing.get(), &spec_), 1);
    EXPECT_EQ(dv_elem_to_fsspec(nullptr, &spec_), 0);
}

}  // namespace
