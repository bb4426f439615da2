// A field's text as assistive technology counts it: in characters, where the text itself is bytes
// of UTF-8. Any thread.
#pragma once

#include <string>

// From the character `begin` to before `end`.
struct TextRange {
    int begin = 0, end = 0;
    bool operator==(const TextRange&) const = default;
};

int characters_in(const std::string& text);
// How many characters stand before this byte.
int character_at_byte(const std::string& text, size_t byte);
// The byte at which a character begins; a place beyond the end, and -1, are the end.
size_t byte_of_character(const std::string& text, int character);
std::string part_of(const std::string& text, TextRange range);

enum class TextUnit { character, word, whole };
// The unit that holds this character. A word goes up to the next one. At the end there is none but
// the whole.
TextRange unit_at(const std::string& text, int character, TextUnit unit);

// What has to be removed from `before`, and then put in, to make `now` of it.
struct TextChange {
    TextRange removed, added;  // of the text before, and of the text now
};
TextChange change_between(const std::string& before, const std::string& now);
