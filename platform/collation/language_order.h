// The order of names in the user's language.
#pragma once

#include <stdint.h>

#include <string>

namespace collation {

// The locale by whose rules names are sorted, such as "de_DE": the first of LC_ALL, LC_COLLATE and
// LANG that is set; empty for the rules that hold without a language.
std::string language_of_names();

// A key of a UTF-8 name: keys compare as the names do by the rules of the language, digits as
// numbers, case ignored, and names that the rules take for equal by their bytes. A name that is not
// UTF-8 has replacements in the place of what is wrong. Without ICU's data a key is the name.
class LanguageOrder {
  public:
    explicit LanguageOrder(const std::string& locale);
    ~LanguageOrder();
    LanguageOrder(const LanguageOrder&) = delete;
    LanguageOrder& operator=(const LanguageOrder&) = delete;

    std::string key(const char* name) const;

  private:
    void* collator_;
};

}  // namespace collation
