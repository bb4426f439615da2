// How sizes are written in the lists of archives.
#include "quicklook/decoder/size_text.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "quicklook/size_words.h"

namespace {

using namespace thumbnails;

const char german[] = "%s Byte\n%s Byte\n%s Byte\n%s KB\n%s MB\n%s GB\n%s TB\n1,5";

}  // namespace

TEST(SizeText, HasAUnitThatSuitsTheSize) {
    const struct {
        int64_t size;
        const char* text;
    } rows[] = {
        {0, "0 Byte"},      {999, "999 Byte"},         {1000, "1,0 KB"},       {10200, "10,2 KB"},
        {99949, "99,9 KB"}, {99950, "100 KB"},         {999949, "1000 KB"},    {999950, "1,0 MB"},
        {-1, ""},           {INT64_MAX, "9223372 TB"}, {2500000000, "2,5 GB"},
    };
    for (const auto& row : rows) EXPECT_EQ(size_text(row.size, german), row.text);
}

TEST(SizeText, HasTheFormForTheNumber) {
    const std::string words = "%s none\n%s one\n%s many\n%s KB\n%s MB\n%s GB\n%s TB\n1.5";
    EXPECT_EQ(size_text(0, words), "0 none");
    EXPECT_EQ(size_text(1, words), "1 one");
    EXPECT_EQ(size_text(2, words), "2 many");
}

TEST(SizeText, IsAPlainNumberWithoutTheWords) {
    EXPECT_EQ(size_text(1500, ""), "1500");
    EXPECT_EQ(size_text(1500, "%s bytes\n"), "1500");
}

TEST(SizeWords, AreThoseOfTheUsersLanguage) {
    EXPECT_EQ(size_text(1, size_words()), "1 byte");
    EXPECT_EQ(size_text(1500, size_words()), "1.5 KB");
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto write_in_french = [] {
        setenv("LANGUAGE", "fr", 1);
        const std::string one = size_text(1, size_words()), more = size_text(1500, size_words());
        exit(one == "1 octet" && more == "1,5 Ko" ? 0 : 1);
    };
    EXPECT_EXIT(write_in_french(), testing::ExitedWithCode(0), "");
}
