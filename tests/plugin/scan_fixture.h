// Shared by the tests of scanning: a folder, and the ways to read it.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "plugin/file_manager.h"
#include "plugin/tree_support.h"
#include "support/temp_folder.h"
#include "tree/dv_scan.h"

namespace test {

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

}  // namespace test
