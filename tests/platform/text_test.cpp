// Texts in the user's language: German here.
#include <host/text.h>

#include <errno.h>
#include <gtest/gtest.h>
#include <locale.h>
#include <stdlib.h>

#include <thread>

namespace {

// The first text decides which language the process has.
const bool is_german = setenv("LANGUAGE", "de", 1) == 0;

TEST(Text, IsInTheUsersLanguage) {
    ASSERT_TRUE(is_german);
    EXPECT_STREQ(translated("Cancel"), "Abbrechen");
    EXPECT_EQ(translated("cannot read %s: %s", {"a.txt", "x"}), "a.txt ist nicht lesbar: x");
    EXPECT_FALSE(text_is_mirrored());
}

TEST(Text, OfNoCatalogueStaysEnglish) {
    EXPECT_STREQ(translated("Nobody has translated this."), "Nobody has translated this.");
}

TEST(Text, HasTheFormThatGoesWithItsNumber) {
    EXPECT_EQ(translated_count("%s item", "%s items", 1, {"1"}), "1 Objekt");
    EXPECT_EQ(translated_count("%s item", "%s items", 3, {"3"}), "3 Objekte");
    EXPECT_EQ(translated_count("%s cow", "%s cows", 1, {"1"}), "1 cow");
    EXPECT_EQ(translated_count("%s cow", "%s cows", 0, {"0"}), "0 cows");
}

TEST(Text, IsTheSameInEveryThread) {
    std::string text;
    std::thread([&text] { text = translated("Cancel"); }).join();
    EXPECT_EQ(text, "Abbrechen");
}

TEST(Text, LeavesTheLocaleOfTheProgramAlone) {
    const std::string before = setlocale(LC_ALL, nullptr);
    translated("Cancel");
    EXPECT_EQ(setlocale(LC_ALL, nullptr), before);
    EXPECT_EQ(uselocale(nullptr), LC_GLOBAL_LOCALE);
}

TEST(Text, OfAnErrorSurvivesTheLookup) {
    errno = ENOENT;
    const std::string text = translated("cannot read %s: %s", {"a", error_text(errno)});
    EXPECT_EQ(text, "a ist nicht lesbar: " + error_text(ENOENT));
    EXPECT_FALSE(error_text(ENOENT).empty());
}

TEST(FilledFormat, HasItsWordsInTheirOrder) {
    EXPECT_EQ(filled("%s of %s", {"1", "2"}), "1 of 2");
    EXPECT_EQ(filled("%2$s in %1$s", {"folder", "file"}), "file in folder");
}

TEST(FilledFormat, KeepsWhatIsNoPlaceForAWord) {
    EXPECT_EQ(filled("100%% of %s", {"it"}), "100% of it");
    EXPECT_EQ(filled("%d %s %s", {"one"}), "%d one %s");
    EXPECT_EQ(filled("%7$s%", {"one"}), "%7$s%");
    EXPECT_EQ(filled("%s", {"%s"}), "%s");
}

}  // namespace
