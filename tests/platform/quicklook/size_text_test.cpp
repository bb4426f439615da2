// How sizes are written in the lists of archives.
#include "quicklook/decoder/size_text.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "quicklook/size_words.h"

namespace {

using namespace thumbnails;

const char german[] =
    "%s Byte\n%s Byte\n%s Byte\n%s Byte\n%s Byte\n%s Byte\n%s KB\n%s MB\n%s GB\n%s TB\n1,5";

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
    const std::string words =
        "%s none\n%s one\n%s two\n%s few\n%s many\n%s other\n%s KB\n%s MB\n%s GB\n%s TB\n1.5";
    for (const char* text : {"0 none", "1 one", "2 two", "3 few", "10 few", "11 many", "99 many",
                             "100 other", "102 other", "103 few", "999 many"}) {
        EXPECT_EQ(size_text(atoi(text), words), text);
    }
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
