#include "preview/dv_text_lines.h"

#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

// A text in a buffer as the renderer has it.
class TextLines : public testing::Test {
  protected:
    void text(const std::string& bytes) {
        std::fill(buffer_.begin(), buffer_.end(), '\0');
        std::copy(bytes.begin(), bytes.end(), buffer_.begin());
        length_ = static_cast<int32_t>(bytes.size());
    }
    // The bytes of each line as they are drawn.
    Lines lines(uint32_t side) {
        dv_text_layout_t layout = dv_begin_text_layout(buffer_.data(), length_, side);
        Lines found;
        dv_text_line_t line;
        while (dv_next_text_line(&layout, &line)) {
            found.emplace_back(buffer_.data() + line.start, line.count);
        }
        length_ = layout.length;
        return found;
    }
    Lines lines_of(const std::string& bytes, uint32_t side = 128) {
        text(bytes);
        return lines(side);
    }

    std::vector<char> buffer_ = std::vector<char>(DV_PREVIEW_TEXT_CAPACITY);
    int32_t length_ = 0;
};

// A line without a line break is filled with the buffer's zero bytes.
std::string filled(const std::string& text, size_t columns = 20) {
    return text + std::string(columns - text.size(), '\0');
}

}  // namespace

TEST_F(TextLines, NoTextHasNoLines) { EXPECT_EQ(lines_of(""), Lines()); }

TEST_F(TextLines, ASquareOf128HasTenLinesOfTwentyCharacters) {
    const Lines found = lines_of(std::string(1000, 'x'));
    EXPECT_EQ(found, Lines(10, std::string(20, 'x')));
}

TEST_F(TextLines, TheDefaultSquareHas21LinesOf42Characters) {
    text(std::string(2000, 'x'));
    EXPECT_EQ(lines(256), Lines(21, std::string(42, 'x')));
}

TEST_F(TextLines, ALineOfExactlyAllColumnsIsOneLine) {
    EXPECT_EQ(lines_of("abcdefghijklmnopqrst"), Lines({"abcdefghijklmnopqrst"}));
}

TEST_F(TextLines, OneCharacterMoreStandsOnALineOfItsOwn) {
    EXPECT_EQ(lines_of("abcdefghijklmnopqrstU"), Lines({"abcdefghijklmnopqrst", filled("U")}));
}

TEST_F(TextLines, AFullLineWithABreakIsFollowedByAnEmptyLine) {
    EXPECT_EQ(lines_of("abcdefghijklmnopqrst\nb\n"), Lines({"abcdefghijklmnopqrst", "", "b"}));
}

TEST_F(TextLines, EveryKindOfBreakEndsALine) {
    EXPECT_EQ(lines_of("a\r\nb"), Lines({"a", filled("b")}));
    EXPECT_EQ(lines_of("a\rb"), Lines({"a", filled("b")}));
    EXPECT_EQ(lines_of("a\nb"), Lines({"a", filled("b")}));
}

TEST_F(TextLines, LineFeedsAloneAreEmptyLines) {
    EXPECT_EQ(lines_of("\n\nb\n"), Lines({"", "", "b"}));
    EXPECT_EQ(lines_of("a\n\r"), Lines({"a", ""}));
}

TEST_F(TextLines, ACarriageReturnAtTheEndLooksAtNoByteBeyond) {
    text("a\r");
    buffer_[2] = '\n';  // left over, not part of the text
    EXPECT_EQ(lines(128), Lines({"a"}));
}

TEST_F(TextLines, OtherControlBytesAreCharacters) {
    const std::string bytes("a\0\x01\x7f\x1b\n", 6);
    EXPECT_EQ(lines_of(bytes), Lines({bytes.substr(0, 5)}));
}

TEST_F(TextLines, TabsGoToEveryFourthColumn) {
    EXPECT_EQ(lines_of("\ta\n"), Lines({"    a"}));
    EXPECT_EQ(lines_of("x\ta\n"), Lines({"x   a"}));
    EXPECT_EQ(lines_of("xx\ta\n"), Lines({"xx  a"}));
    EXPECT_EQ(lines_of("xxx\ta\n"), Lines({"xxx a"}));
    EXPECT_EQ(lines_of("xxxx\ta\n"), Lines({"xxxx    a"}));
    EXPECT_EQ(lines_of("\t\ta\n"), Lines({"        a"}));
}

TEST_F(TextLines, TabStopsCountFromTheStartOfTheDrawnLine) {
    // The tab is the wrapped line's second character.
    EXPECT_EQ(lines_of("abcdefghijklmnopqrstU\tv\n"), Lines({"abcdefghijklmnopqrst", "U   v"}));
    EXPECT_EQ(lines_of("abc\n\tv\n"), Lines({"abc", "    v"}));
}

TEST_F(TextLines, ATabThatReachesOverTheLastColumnGoesOnInTheNextLine) {
    // 18 characters, and a tab up to column 20: nothing is left over. From column 17 it is 3 wide.
    EXPECT_EQ(lines_of("abcdefghijklmnopqr\tv\n"), Lines({"abcdefghijklmnopqr  ", "v"}));
    // 22 columns: the tab at column 20 has two of its four spaces in the first line.
    EXPECT_EQ(lines_of("abcdefghijklmnopqrst\tv\n", 140), Lines({"abcdefghijklmnopqrst  ", "  v"}));
}

TEST_F(TextLines, ExpandedTabsMakeTheTextLonger) {
    text("\ta");
    lines(128);
    EXPECT_EQ(length_, 5);
}

TEST_F(TextLines, ExpandedTabsNeverOutgrowTheBuffer) {
    text(std::string(DV_PREVIEW_TEXT_CAPACITY - 3, 'x') + "\tyz");
    std::fill(buffer_.begin(), buffer_.begin() + 4, '\t');
    lines(8192);
    EXPECT_EQ(length_, DV_PREVIEW_TEXT_CAPACITY);
    EXPECT_EQ(std::string(buffer_.data(), 16), std::string(16, ' '));
}

TEST_F(TextLines, ATabNearTheBuffersEndIsOneSpace) {
    for (const int at : {10235, 10239}) {
        text(std::string(at, 'x') + '\t');
        lines(8192);
        EXPECT_EQ(length_, at + 1);
        EXPECT_EQ(buffer_[at], ' ');
    }
}

TEST_F(TextLines, TheLastTabThatIsExpandedKeepsWithinTheBuffer) {
    // 1024 columns: the tab at 10234 stands in column 1018, so two spaces.
    text(std::string(10234, 'x') + "\tabcde");
    const Lines found = lines(6148);
    ASSERT_EQ(found.size(), 10u);
    EXPECT_EQ(found[9].substr(1018), "  abcd");
    EXPECT_EQ(length_, DV_PREVIEW_TEXT_CAPACITY);
}

TEST_F(TextLines, TheLastLineEndsWithTheBuffer) {
    text(std::string(DV_PREVIEW_TEXT_CAPACITY, 'x'));
    const Lines found = lines(6190);  // 1031 columns
    EXPECT_EQ(found[0].size(), 1031u);
    EXPECT_EQ(found.back().size(), DV_PREVIEW_TEXT_CAPACITY % 1031u);
}

TEST_F(TextLines, LinesThatHaveNoRoomAreLeftOut) {
    std::string many;
    for (char letter = 'a'; letter <= 'z'; letter++) many += {letter, '\n'};
    EXPECT_EQ(lines_of(many), Lines({"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"}));
}

TEST_F(TextLines, ASquareTooSmallForALineHasNone) {
    for (const uint32_t side : {0u, 3u, 4u, 15u}) EXPECT_EQ(lines_of("abc", side), Lines());
    EXPECT_EQ(lines_of("abc", 16), Lines({"ab"}));
}
