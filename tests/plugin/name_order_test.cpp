#include "tree/dv_scan.h"

#include <gtest/gtest.h>
#include <string.h>

#include "plugin/scan_fixture.h"
#include "tree/dv_state.h"

namespace {

TEST(ScanFlags, FollowFromThePreferences) {
    const uint32_t hidden[] = {0, DV_SCAN_DOT_FILES, DV_SCAN_INVISIBLE,
                               DV_SCAN_DOT_FILES | DV_SCAN_INVISIBLE, 0};
    delvio_t state = {};
    for (uint32_t value = 0; value < 5; value++) {
        state.show_hidden_files = value;
        EXPECT_EQ(dv_get_flags(&state), hidden[value]) << value;
    }
    state = {};
    state.show_package_contents = 2;
    EXPECT_EQ(dv_get_flags(&state), DV_SCAN_PACKAGES);
    state = {};
    state.sort_order = 1;
    EXPECT_EQ(dv_get_flags(&state), DV_SCAN_MIXED);
    state.sort_order = 2;
    EXPECT_EQ(dv_get_flags(&state), 0u);
}

TEST(SortOrder, TheDefaultEqualsTheFirstRow) {
    EXPECT_EQ(memcmp(default_sort_order, sort_orders[0], sizeof default_sort_order), 0);
}

class NameOrder : public testing::Test {
  protected:
    static int compare(const char* a, const char* b) {
        dirent left = {}, right = {};
        strcpy(left.d_name, a);
        strcpy(right.d_name, b);
        const dirent* one = &left;
        const dirent* two = &right;
        const int order = dv_sort(&one, &two);
        EXPECT_EQ(dv_sort(&two, &one) < 0, order > 0);
        return (order > 0) - (order < 0);
    }
};

TEST_F(NameOrder, DigitsCompareAsNumbers) {
    EXPECT_EQ(compare("file10", "file9"), 1);
    EXPECT_EQ(compare("file09", "file9"), 0);
    EXPECT_EQ(compare("1.10", "1.9"), 1);
}

TEST_F(NameOrder, CaseMakesNoDifference) {
    EXPECT_EQ(compare("Apple", "apple"), 0);
    EXPECT_EQ(compare("B", "a"), 1);
}

TEST_F(NameOrder, BytesAreNotDecoded) {
    // As two characters, A with tilde and the copyright sign; as one, e with acute.
    EXPECT_EQ(compare("\xc3\xa9", "b"), -1);
    EXPECT_EQ(compare("\xc3\xa9", "e"), -1);
    EXPECT_EQ(compare("\xc3\xa9", "A"), 1);
    EXPECT_EQ(compare("\xe9", "e"), 1);
    EXPECT_EQ(compare("\xe9", "f"), -1);
}

TEST_F(NameOrder, PunctuationCounts) {
    EXPECT_EQ(compare("a b", "ab"), -1);
    EXPECT_EQ(compare("a b", "a_b"), -1);
    EXPECT_EQ(compare("a-b", "ab"), -1);
}

TEST_F(NameOrder, TheLongestNamesCompare) {
    const std::string a(255, 'a');
    const std::string b = std::string(254, 'a') + "b";
    EXPECT_EQ(compare(a.c_str(), a.c_str()), 0);
    EXPECT_EQ(compare(a.c_str(), b.c_str()), -1);
    EXPECT_EQ(compare("", a.c_str()), -1);
}

}  // namespace
