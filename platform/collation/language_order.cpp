#include "collation/language_order.h"

#include <stdlib.h>
#include <string.h>
#include <unicode/ucol.h>
#include <unicode/unistr.h>

namespace collation {

namespace {

UCollator* open_collator(const std::string& locale) {
    UErrorCode error = U_ZERO_ERROR;
    UCollator* collator = ucol_open(locale.c_str(), &error);
    if (U_FAILURE(error)) return nullptr;
    ucol_setAttribute(collator, UCOL_STRENGTH, UCOL_SECONDARY, &error);
    ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, UCOL_ON, &error);
    ucol_setAttribute(collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &error);
    return collator;
}

}  // namespace

std::string language_of_names() {
    for (const char* name : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        const char* value = getenv(name);
        if (!value || !*value) continue;
        const std::string locale(value, strcspn(value, ".@"));
        return locale == "C" || locale == "POSIX" ? "" : locale;
    }
    return "";
}

LanguageOrder::LanguageOrder(const std::string& locale) : collator_(open_collator(locale)) {}

LanguageOrder::~LanguageOrder() {
    if (collator_) ucol_close(static_cast<UCollator*>(collator_));
}

std::string LanguageOrder::key(const char* name) const {
    if (!collator_) return name;
    const icu::UnicodeString text = icu::UnicodeString::fromUTF8(name);
    const auto* collator = static_cast<const UCollator*>(collator_);
    std::string key(static_cast<size_t>(text.length()) * 8 + 32, '\0');
    for (int tries = 0; tries < 2; tries++) {
        const int32_t length = ucol_getSortKey(collator, text.getBuffer(), text.length(),
                                               reinterpret_cast<uint8_t*>(key.data()),
                                               static_cast<int32_t>(key.size()));
        const bool fits = length <= static_cast<int32_t>(key.size());
        key.resize(static_cast<size_t>(length));
        if (fits) break;
    }
    return key + name;
}

}  // namespace collation
