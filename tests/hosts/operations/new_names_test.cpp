#include "file_steps/new_names.h"

#include <gtest/gtest.h>

using operations::alias_name;
using operations::copy_name;

namespace {

std::string repeated(const std::string& text, int times) {
    std::string all;
    while (times-- > 0) all += text;
    return all;
}

TEST(NewNames, ACopyIsNumberedBeforeItsExtension) {
    EXPECT_EQ(copy_name("notes.txt", false, 1), "notes copy.txt");
    EXPECT_EQ(copy_name("notes.txt", false, 2), "notes copy 2.txt");
    EXPECT_EQ(copy_name("a.tar.gz", false, 1), "a.tar copy.gz");
    EXPECT_EQ(copy_name("notes", false, 1), "notes copy");
}

TEST(NewNames, WhatIsNoExtensionStaysInThePlaceThatItHas) {
    EXPECT_EQ(copy_name(".profile", false, 1), ".profile copy");
    EXPECT_EQ(copy_name("end.", false, 1), "end. copy");
    EXPECT_EQ(copy_name("1. First thing", false, 1), "1. First thing copy");
    EXPECT_EQ(copy_name("Version 1.2", true, 1), "Version 1.2 copy");
}

TEST(NewNames, AnAliasIsNamedAfterItsOriginal) {
    EXPECT_EQ(alias_name("notes.txt", 0), "notes.txt");
    EXPECT_EQ(alias_name("notes.txt", 1), "notes.txt alias");
    EXPECT_EQ(alias_name("notes.txt", 12), "notes.txt alias 12");
}

TEST(NewNames, LongNamesAreCutByWholeCharacters) {
    EXPECT_EQ(copy_name(std::string(255, 'x'), false, 1), std::string(250, 'x') + " copy");
    EXPECT_EQ(copy_name(std::string(251, 'x') + ".txt", false, 1),
              std::string(246, 'x') + " copy.txt");
    EXPECT_EQ(alias_name(repeated("é", 127), 1), repeated("é", 124) + " alias");
    EXPECT_EQ(alias_name(repeated("漢", 85), 10), repeated("漢", 82) + " alias 10");
    EXPECT_EQ(alias_name(std::string(255, '\x80'), 1).size(), 255u);
}

}  // namespace
