// ICU's own comparison of texts, with the options of the menu's order. The tests that include this
// link ICU.
#pragma once

#include <gtest/gtest.h>
#include <unicode/ucol.h>

#include <string>

namespace test {

inline int icu_order(const std::u16string& a, const std::u16string& b) {
    static const UCollator* collator = [] {
        UErrorCode error = U_ZERO_ERROR;
        UCollator* made = ucol_open("", &error);
        ucol_setAttribute(made, UCOL_STRENGTH, UCOL_SECONDARY, &error);
        ucol_setAttribute(made, UCOL_NUMERIC_COLLATION, UCOL_ON, &error);
        ucol_setAttribute(made, UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &error);
        ucol_setAttribute(made, UCOL_NORMALIZATION_MODE, UCOL_ON, &error);
        EXPECT_TRUE(U_SUCCESS(error));
        return made;
    }();
    return ucol_strcoll(collator, a.data(), static_cast<int32_t>(a.size()), b.data(),
                        static_cast<int32_t>(b.size()));
}

// The text whose characters are these bytes.
inline std::u16string widened(const std::string& bytes) {
    std::u16string text;
    for (const unsigned char byte : bytes) text += byte;
    return text;
}

}  // namespace test
