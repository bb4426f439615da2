#include "resident/shown_call.h"

#include <gtest/gtest.h>

namespace {

using resident::asks_for_shown_menu;
using Words = std::vector<std::string>;

TEST(ShownCall, AMenuOfFilesIsForTheHost) {
    EXPECT_TRUE(asks_for_shown_menu({"menu", "a"}));
    EXPECT_TRUE(asks_for_shown_menu({"menu", "a", "--at", "1,2", "b"}));
    EXPECT_TRUE(
        asks_for_shown_menu({"menu", "--at=1,2", "--setting", "a=b", "--modifiers=shift", "a"}));
    EXPECT_TRUE(asks_for_shown_menu({"menu", "--", "--print"}));
    EXPECT_TRUE(asks_for_shown_menu({"menu", "-"}));
}

TEST(ShownCall, FormsWithoutAMenuOnTheScreenAreNot) {
    for (const char* form : {"--print", "--json", "--png", "--png=a.png", "--pick", "--pick=a",
                             "--depth", "--replace", "--open", "--help", "-h", "--no-resident"}) {
        EXPECT_FALSE(asks_for_shown_menu({"menu", form, "a"})) << form;
        EXPECT_FALSE(asks_for_shown_menu({"menu", "a", form})) << form;
    }
}

TEST(ShownCall, OtherCommandsAndMistakesAreNot) {
    for (const Words& words : {Words{},
                               {"--version"},
                               {"undo"},
                               {"settings", "list"},
                               {"menu"},
                               {"menu", "--"},
                               {"menu", "--at"},
                               {"menu", "a", "--at"},
                               {"menu", "--at", "1,2"},
                               {"menu", "--wrong", "a"},
                               {"men", "a"}}) {
        EXPECT_FALSE(asks_for_shown_menu(words)) << testing::PrintToString(words);
    }
}

TEST(ShownCall, TheValueOfAnOptionIsNoOption) {
    EXPECT_TRUE(asks_for_shown_menu({"menu", "--setting", "--print", "a"}));
}

}  // namespace
