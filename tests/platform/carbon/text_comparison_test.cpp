#include <Carbon/UnicodeUtilities.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "support/icu_collator.h"

namespace {

const UCCollateOptions options = 0x3800E;

using test::icu_order;
using test::widened;

int order(const std::u16string& a, const std::u16string& b) {
    Boolean equivalent = 9;
    SInt32 result = 99;
    EXPECT_EQ(UCCompareTextDefault(options, reinterpret_cast<const UniChar*>(a.data()), a.size(),
                                   reinterpret_cast<const UniChar*>(b.data()), b.size(),
                                   &equivalent, &result),
              noErr);
    EXPECT_EQ(equivalent, result == 0);
    return (result > 0) - (result < 0);
}

int order(const char* a, const char* b) { return order(widened(a), widened(b)); }

std::string shown(const std::u16string& text) {
    std::string result;
    char unit[16];
    for (const char16_t c : text) {
        snprintf(unit, sizeof unit, c > 0x20 && c < 0x7F ? "%c" : "<%02X>", c);
        result += unit;
    }
    return result;
}

// Counts disagreements with ICU and shows the first few.
class Disagreements {
  public:
    void check(const std::u16string& a, const std::u16string& b) {
        const int expected = icu_order(a, b), actual = order(a, b);
        if (expected == actual) return;
        if (count_++ < 20) {
            ADD_FAILURE() << shown(a) << " against " << shown(b) << ": ICU says " << expected
                          << ", we say " << actual;
        }
    }
    int count() const { return count_; }

  private:
    int count_ = 0;
};

std::u16string random_text(std::mt19937& random, const std::u16string& alphabet, size_t longest) {
    std::u16string text(random() % (longest + 1), u' ');
    for (char16_t& unit : text) unit = alphabet[random() % alphabet.size()];
    return text;
}

std::u16string all_byte_wide_characters() {
    std::u16string all;
    for (char16_t unit = 0; unit < 256; unit++) all += unit;
    return all;
}

}  // namespace

TEST(TextComparison, AgreesWithIcuOnAllPairsOfCharacters) {
    Disagreements disagreements;
    for (char16_t a = 0; a < 256; a++) {
        for (char16_t b = 0; b < 256; b++) disagreements.check({a}, {b});
    }
    EXPECT_EQ(disagreements.count(), 0);
}

TEST(TextComparison, AgreesWithIcuOnAllPairsOfCharactersInsideTexts) {
    struct Frame {
        std::u16string before, after;
    };
    const Frame frames[] = {{u"a", u"b"}, {u"l", u""}, {u"1", u"2"}, {u"", u"0"}, {u"x9", u""}};
    Disagreements disagreements;
    for (const Frame& frame : frames) {
        for (char16_t a = 0; a < 256; a++) {
            for (char16_t b = 0; b < 256; b++) {
                disagreements.check(frame.before + a + frame.after, frame.before + b + frame.after);
            }
        }
    }
    EXPECT_EQ(disagreements.count(), 0);
}

TEST(TextComparison, AgreesWithIcuOnEveryTextOfTwoCharactersAgainstItsNeighbours) {
    Disagreements disagreements;
    for (char16_t a = 0; a < 256; a++) {
        for (char16_t b = 0; b < 256; b++) {
            disagreements.check({a, b}, {b, a});
            disagreements.check({a, b}, {a});
            disagreements.check({a, b}, {b});
            disagreements.check({u'a', a, b}, {u'a', u'1'});
        }
    }
    EXPECT_EQ(disagreements.count(), 0);
}

TEST(TextComparison, AgreesWithIcuOnRandomTexts) {
    const std::u16string alphabets[] = {
        all_byte_wide_characters(),
        u"aAbBlL\u00B7 _-.01239\u00BC\u00BD\u00BE\u00B9\u00B2\u00B3",
        u"eE\u00E9\u00C9\u00E8aA\u00E4\u00E6\u00C6\u00DFsS1\u00AD\u007F",
        u"0123456789\u00BD",
    };
    std::mt19937 random(20071);
    Disagreements disagreements;
    for (const std::u16string& alphabet : alphabets) {
        for (int round = 0; round < 100000; round++) {
            const std::u16string start = random_text(random, alphabet, 3);
            disagreements.check(start + random_text(random, alphabet, 6),
                                start + random_text(random, alphabet, 6));
        }
    }
    EXPECT_EQ(disagreements.count(), 0);
}

TEST(TextComparison, AgreesWithIcuOnRandomFileNames) {
    const char* const words[] = {"file",
                                 "File",
                                 "IMG_",
                                 "report",
                                 "r\xC3\xA9sum\xC3\xA9",
                                 "\xE6\x97\xA5\xE6\x9C\xAC",
                                 "\xD0\xBF\xD1\x80\xD0\xB8",
                                 " copy",
                                 "-",
                                 ".",
                                 ".tar",
                                 ".gz",
                                 "(1)",
                                 "007",
                                 "10",
                                 "9",
                                 "2024-01-02",
                                 "col\xC2\xB7lecci\xC3\xB3",
                                 "ma\xC3\x9Fig"};
    std::mt19937 random(4711);
    std::vector<std::u16string> names;
    for (int i = 0; i < 3000; i++) {
        std::string name;
        const unsigned parts = 1 + random() % 4;
        for (unsigned part = 0; part < parts; part++) {
            name += words[random() % std::size(words)];
            if (random() % 3 == 0) name += std::to_string(random() % 2000);
        }
        names.push_back(widened(name));
    }
    Disagreements disagreements;
    for (int i = 0; i < 200000; i++) {
        disagreements.check(names[random() % names.size()], names[random() % names.size()]);
    }
    std::sort(names.begin(), names.end(), [](auto& a, auto& b) { return order(a, b) < 0; });
    for (size_t i = 1; i < names.size(); i++) {
        EXPECT_LE(icu_order(names[i - 1], names[i]), 0);
        disagreements.check(names[i - 1], names[i]);
    }
    EXPECT_EQ(disagreements.count(), 0);
}

TEST(TextComparison, AgreesWithIcuOnTextsBeyondTheTables) {
    std::mt19937 random(99);
    const std::u16string alphabet =
        u"ae\u0301l\u00B7\u4E2D\u0430\u0411 19\u0661\uFF11\u0300\u0E40\u0E01";
    Disagreements disagreements;
    for (int round = 0; round < 50000; round++) {
        const std::u16string start = random_text(random, alphabet, 4);
        disagreements.check(start + random_text(random, alphabet, 6),
                            start + random_text(random, alphabet, 6));
    }
    EXPECT_EQ(disagreements.count(), 0);
}

TEST(TextComparison, AgreesWithIcuOnVeryLongNumbersAndTexts) {
    const std::u16string digits = u"0123456789";
    std::mt19937 random(5);
    Disagreements disagreements;
    for (const size_t length : {6u, 7u, 8u, 20u, 21u, 253u, 254u, 255u, 256u, 300u, 600u}) {
        for (int round = 0; round < 300; round++) {
            std::u16string a(length, u'0'), b(length + random() % 2, u'0');
            for (char16_t& unit : a) unit = digits[random() % 10];
            for (char16_t& unit : b) unit = digits[random() % 10];
            std::copy_n(a.begin(), random() % length, b.begin());
            disagreements.check(a, b);
            disagreements.check(u"n" + a + u"x", u"n" + b + u"X");
        }
    }
    EXPECT_EQ(disagreements.count(), 0);
}

TEST(TextComparison, NumbersCompareByValue) {
    EXPECT_LT(order("file9", "file10"), 0);
    EXPECT_EQ(order("file09", "file9"), 0);
    EXPECT_LT(order("file1a", "file01b"), 0);
    EXPECT_EQ(order("00", "0"), 0);
    EXPECT_GT(order("a01b2", "a1b1"), 0);
    EXPECT_LT(order("99999999999999999999", "100000000000000000000"), 0);
    EXPECT_GT(order("1.10", "1.9"), 0);
    EXPECT_LT(order("1,000", "999"), 0);
}

TEST(TextComparison, CaseIsIgnoredAndAccentsCount) {
    EXPECT_EQ(order("Apple", "apple"), 0);
    EXPECT_LT(order("APPLE", "apple1"), 0);
    EXPECT_LT(order("cafe", "caf\xE9"), 0);
    EXPECT_LT(order("caf\xE9", "caff"), 0);
    EXPECT_EQ(order("\xC9", "\xE9"), 0);
    EXPECT_LT(order("resume", "r\xE9sum\xE9"), 0);
    EXPECT_LT(order("r\xE9sum\xE9", "Resume2"), 0);
}

TEST(TextComparison, BytesOfUtf8CompareAsCharactersOfTheirOwn) {
    EXPECT_LT(order("A", "\xC3\xA9"), 0);
    EXPECT_LT(order("\xC3\xA9", "b"), 0);
    EXPECT_LT(order("\xC3\xA9", "e"), 0);
}

TEST(TextComparison, PunctuationComesBeforeDigitsAndLettersInAFixedOrder) {
    const char* const ascending[] = {" a", "_a", "-a", ".a", "$a", "1a", "aa"};
    for (size_t i = 1; i < std::size(ascending); i++) {
        EXPECT_LT(order(ascending[i - 1], ascending[i]), 0) << ascending[i];
    }
    EXPECT_NE(order("a-b", "ab"), 0);
    EXPECT_NE(order("a b", "ab"), 0);
}

TEST(TextComparison, AnEmptyTextComesFirst) {
    EXPECT_EQ(order("", ""), 0);
    EXPECT_LT(order("", "a"), 0);
    EXPECT_GT(order("a", ""), 0);
}

TEST(TextComparison, OtherOptionsAreRefused) {
    const UniChar a = 'a';
    SInt32 result = 77;
    EXPECT_EQ(UCCompareTextDefault(0, &a, 1, &a, 1, nullptr, &result), paramErr);
    EXPECT_EQ(result, 77);
    EXPECT_EQ(UCCompareTextDefault(options, nullptr, 1, &a, 1, nullptr, &result), paramErr);
    EXPECT_EQ(UCCompareTextDefault(options, &a, 1, &a, 1, nullptr, nullptr), noErr);
}

TEST(TextComparison, ManyThreadsGetTheSameAnswers) {
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([&] {
            for (int round = 0; round < 2000; round++) {
                if (order("file9", "file10") >= 0) wrong++;
                if (order(u"\u4E2D1", u"\u4E2D2") >= 0) wrong++;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}
