// A selection of files and a folder that they go to, with the events and alerts that follow.
#pragma once

#include <Carbon/Carbon.h>
#include <host/process.h>
#include <gtest/gtest.h>
#include <string.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "finder/dv_conflicts.h"
#include "finder/dv_file_ops.h"
#include "plugin/finder/carbon_trouble.h"
#include "plugin/finder/finder_post.h"
#include "plugin/finder/shown_alert.h"
#include "plugin/tree_support.h"
#include "support/dv_log.h"
#include "support/heap.h"
#include "support/temp_folder.h"
#include "support/turn.h"
#include "tree/dv_scan.h"
#include "tree/dv_state.h"

namespace test {

using Paths = std::vector<std::string>;
using Parameters = std::vector<std::pair<FourCharCode, FourCharCode>>;

enum { dont_replace = kAlertStdAlertOKButton, replace = kAlertStdAlertCancelButton };

class FileOp : public testing::Test {
  protected:
    FileOp() {
        answer_standard_alerts(kAlertAnswerDefault);
        test::shown_alert = {};
    }
    ~FileOp() override {
        dvEnableDebugOutput = 0;
        answer_standard_alerts(kAlertAnswerAsk);
        test::shown_alert = {};
        test::carbon_trouble = nullptr;
    }

    static dv_tree_t* folder_root(const std::string& path, uint32_t origin = 0) {
        dv_tree_t* root = dv_build_tree(path.c_str(), 0, 1, 0, origin);
        EXPECT_NE(root, nullptr) << path;
        return root;
    }
    static dv_tree_t* single(const std::string& path, uint32_t origin = DV_ORIGIN_SELECTED_FILE) {
        return dv_create_elem(dv_create_single_dir(path.c_str()), nullptr, 0, origin);
    }
    // Appends to the selection.
    dv_tree_t* select(dv_tree_t* elem) {
        dv_tree_t* head = selection_.release();
        dv_update_ptrs(elem, &last_, &head);
        selection_.reset(head);
        return elem;
    }
    dv_tree_t* select(const std::string& path) { return select(single(path)); }

    // The folder as a level of the plug-in's menus offers it: a copy below its element.
    dv_tree_t* target_in(dv_tree_t* parent) {
        targets_.emplace_back(dv_copy_elem(parent));
        targets_.back()->parent = parent;
        targets_.back()->origin |= DV_ORIGIN_MOVE_COPY;
        return targets_.back().get();
    }
    // A folder in its own tree.
    dv_tree_t* target(const std::string& path) {
        roots_.emplace_back(folder_root(path));
        return target_in(roots_.back().get());
    }

    std::vector<Letter> send(dv_tree_t* destination, long operation, uint32_t open_after = 0) {
        dv_send_file_op_to_finder(&state_, selection_.get(), destination, operation, open_after);
        return post_.letters();
    }
    Letter send_one(dv_tree_t* destination, long operation) {
        const std::vector<Letter> letters = send(destination, operation);
        EXPECT_EQ(letters.size(), 1u);
        return letters.empty() ? Letter() : letters.back();
    }

    test::TempFolder folder_;
    test::FinderPost post_;
    delvio_t state_ = {};
    std::vector<Tree> targets_, roots_;
    Tree selection_;
    dv_tree_t* last_ = nullptr;
};

}  // namespace test
