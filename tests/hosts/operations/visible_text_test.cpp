#include "file_steps/visible_text.h"

#include <gtest/gtest.h>

using operations::in_quotes;
using operations::quoted_name;
using operations::visible_text;
using operations::window_name;

TEST(VisibleText, ShowsOrdinaryTextAsItIs) {
    for (const char* text : {"", "notes.txt", "back\\slash \"quoted\"", "ä中😀",
                             "fi\xe2\x80\x8d"
                             "x"}) {
        EXPECT_EQ(visible_text(text), text);
    }
}

TEST(VisibleText, EscapesWhatControlsHidesOrReorders) {
    const struct {
        const char *text, *shown;
    } rows[] = {
        {"two\nlines\r\t", "two\\nlines\\r\\t"},
        {"\x1b[31mred\x7f", "\\x1b[31mred\\x7f"},
        {"\xc2\x9b", "\\u009b"},
        {"gpj.\xe2\x80\xae"
         "exe",
         "gpj.\\u202eexe"},
        {"\xe2\x80\xa8", "\\u2028"},
        {"\xef\xbb\xbfmark", "\\ufeffmark"},
        {"\xf3\xa0\x80\xa1", "\\U000e0021"},
    };
    for (const auto& row : rows) EXPECT_EQ(visible_text(row.text), row.shown);
    EXPECT_EQ(visible_text(std::string_view("a\0b", 3)), "a\\x00b");
}

TEST(VisibleText, EscapesBytesThatAreNotUtf8) {
    const struct {
        const char *text, *shown;
    } rows[] = {
        {"caf\xe9", "caf\\xe9"},
        {"\xc3", "\\xc3"},
        {"\xc0\x8a", "\\xc0\\x8a"},                    // a newline in too many bytes
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},           // a surrogate
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},  // beyond the last character
        {"\xe2\x82z", "\\xe2\\x82z"},
    };
    for (const auto& row : rows) EXPECT_EQ(visible_text(row.text), row.shown);
}

TEST(VisibleText, IsQuotedForTerminalsAndForWindows) {
    EXPECT_EQ(in_quotes("two\nlines"), "\"two\\nlines\"");
    EXPECT_EQ(in_quotes("/home/me"), "\"/home/me\"");
    EXPECT_EQ(quoted_name("/home/me/notes.txt"), "\"notes.txt\"");
    EXPECT_EQ(window_name("/home/me/no\ttes.txt"), "“no\\ttes.txt”");
}

TEST(VisibleText, OfTheRootIsItself) {
    EXPECT_EQ(quoted_name("/"), "\"/\"");
    EXPECT_EQ(window_name("/"), "“/”");
}
