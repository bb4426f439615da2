#include "finder/dv_open.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "plugin/tree_support.h"
#include "support/heap.h"
#include "support/recording_program.h"
#include "support/temp_folder.h"
#include "support/turn.h"
#include "tree/dv_tree.h"

namespace {

using Paths = std::vector<std::string>;

class OpenWith : public testing::Test {
  protected:
    OpenWith() : program_({"text/plain"}, "%F") {
        const std::string entry =
            std::string(getenv("XDG_DATA_HOME")) + "/applications/record.desktop";
        application_.reset(element(entry, DV_ORIGIN_APP_LIST));
    }

    static dv_tree_t* element(const std::string& path, uint32_t origin) {
        return dv_create_elem(dv_create_single_dir(path.c_str()), nullptr, 0, origin);
    }
    void add(const std::string& path, uint32_t origin = 0) {
        dv_tree_t* head = documents_.release();
        dv_update_ptrs(element(path, origin), &last_, &head);
        documents_.reset(head);
    }
    void open(bool many) {
        dv_open_file_with_app(nullptr, documents_.get(), application_.get(), many);
    }
    // Asks for another start afterwards. If that start is the only one, nothing was started before
    // it.
    void expect_nothing_started() {
        documents_.reset();
        last_ = nullptr;
        add(folder_.file("later"));
        open(false);
        EXPECT_EQ(program_.wait(), Paths{folder_.path("later")});
    }

    test::TempFolder folder_;
    test::RecordingProgram program_;
    test::Tree application_, documents_;
    dv_tree_t* last_ = nullptr;
};

TEST_F(OpenWith, ManyDocumentsGoToTheApplicationInOneStart) {
    for (const char* name : {"b", "a", "c d"}) add(folder_.file(name));
    open(true);
    EXPECT_EQ(program_.wait(), (Paths{folder_.path("b"), folder_.path("a"), folder_.path("c d")}));
}

TEST_F(OpenWith, LeavesNothingBehind) {
    const std::string path = folder_.file(std::string(200, 'n'));
    add(path);
    // There is no such application, so nothing is started.
    application_.reset(element(folder_.path("gone"), DV_ORIGIN_APP_LIST));
    const auto round = [&] { test::in_one_turn([&] { open(true); }); };
    // Repeats until the table of file references is full.
    for (int i = 0; i < 5000; i++) round();
    const size_t before = test::memory_in_use();
    for (int i = 0; i < 200; i++) round();
    EXPECT_LT(test::memory_in_use(), before + 1000) << "200 paths would be more";
}

TEST_F(OpenWith, OneDocumentGoesWithoutItsSiblings) {
    add(folder_.file("a"));
    add(folder_.file("b"));
    open(false);
    EXPECT_EQ(program_.wait(), Paths{folder_.path("a")});
}

TEST_F(OpenWith, UserFoldersAreLeftOutOfMany) {
    add(folder_.folder("user"), DV_ORIGIN_USER_FOLDER);
    add(folder_.file("a"));
    add(folder_.folder("other user"), DV_ORIGIN_USER_FOLDER | DV_ORIGIN_SEPARATOR_AFTER);
    open(true);
    EXPECT_EQ(program_.wait(), Paths{folder_.path("a")});
}

TEST_F(OpenWith, NothingButUserFoldersStartsNothing) {
    add(folder_.folder("user"), DV_ORIGIN_USER_FOLDER);
    open(true);
    expect_nothing_started();
}

TEST_F(OpenWith, NoDocumentsStartNothing) {
    open(true);
    open(false);
    expect_nothing_started();
}

TEST_F(OpenWith, OneUserFolderIsOpenedAsAnyDocument) {
    add(folder_.folder("user"), DV_ORIGIN_USER_FOLDER);
    open(false);
    EXPECT_EQ(program_.wait(), Paths{folder_.path("user")});
}

TEST_F(OpenWith, DocumentsWithoutAPathOrAFileAreLeftOut) {
    add("");
    add(folder_.file("a"));
    add(folder_.file("gone"));
    unlink(folder_.path("gone").c_str());
    add(folder_.file("b"));
    open(true);
    EXPECT_EQ(program_.wait(), (Paths{folder_.path("a"), folder_.path("b")}));
}

TEST_F(OpenWith, AnAliasIsOpenedItself) {
    folder_.file("target");
    add(folder_.link("alias", folder_.path("target")));
    documents_->resolved_path = strdup(folder_.path("target").c_str());
    open(false);
    EXPECT_EQ(program_.wait(), Paths{folder_.path("alias")});
}

TEST_F(OpenWith, WithoutAnApplicationNothingStarts) {
    add(folder_.file("a"));
    const test::Tree nowhere(element(folder_.path("gone.desktop"), DV_ORIGIN_APP_LIST));
    const std::string output = test::output_of([&] {
        dv_open_file_with_app(nullptr, documents_.get(), nullptr, true);
        dv_open_file_with_app(nullptr, documents_.get(), nowhere.get(), true);
    });
    EXPECT_EQ(output, "");
    expect_nothing_started();
}

}  // namespace
