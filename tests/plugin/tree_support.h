// Shared by the tests of trees: owners of chains, names of a level.
#pragma once

#include <stdio.h>
#include <stdlib.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tree/dv_tree.h"

namespace test {

struct TreeFree {
    void operator()(dv_tree_t* elem) const { dv_free_tree(elem); }
};
// Owns an element, its siblings and all below them.
using Tree = std::unique_ptr<dv_tree_t, TreeFree>;

using Names = std::vector<std::string>;

inline Names names_of(const dv_tree_t* chain) {
    Names names;
    for (; chain; chain = chain->next) names.push_back(chain->name);
    return names;
}

inline const dv_tree_t* child_named(const Tree& root, const std::string& name) {
    for (const dv_tree_t* child = root ? root->children : nullptr; child; child = child->next) {
        if (name == child->name) return child;
    }
    return nullptr;
}

// The path as dv_path_for_elem gives it, "(null)" for none.
inline std::string path_of(const dv_tree_t* elem, int trailing_slash, int ignore_resolved) {
    char* path = dv_path_for_elem(elem, trailing_slash, ignore_resolved);
    const std::string result = path ? path : "(null)";
    free(path);
    return result;
}

// What the action prints to standard output.
template <typename Action>
std::string output_of(Action action) {
    testing::internal::CaptureStdout();
    action();
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

}  // namespace test
