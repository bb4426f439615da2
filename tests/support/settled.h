// Waiting until something no longer changes.
#pragma once

#include <gtest/gtest.h>

#include <utility>

#include "support/waiting.h"

namespace test {

// What `look` says once it has said the same so many times in a row, at the pace of wait_for. The
// test fails when it never does.
template <typename Look>
auto settled(const Look& look, int looks_alike = 15) {
    auto value = look();
    int alike = 0;
    EXPECT_TRUE(wait_for([&] {
        auto now = look();
        alike = now == value ? alike + 1 : 0;
        value = std::move(now);
        return alike >= looks_alike;
    }));
    return value;
}

}  // namespace test
