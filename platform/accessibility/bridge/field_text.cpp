#include "accessibility/bridge/field_text.h"

#include <glib.h>

#include <algorithm>

namespace {

bool is_space(const std::string& text, int character) {
    const char* const at = text.data() + byte_of_character(text, character);
    return g_unichar_isspace(g_utf8_get_char(at));
}

// Whether a word, or the space before the first word, begins here.
bool begins_word(const std::string& text, int character) {
    if (character == 0) return true;
    return !is_space(text, character) && is_space(text, character - 1);
}

}  // namespace

int characters_in(const std::string& text) { return character_at_byte(text, text.size()); }

int character_at_byte(const std::string& text, size_t byte) {
    const size_t length = std::min(byte, text.size());
    return static_cast<int>(g_utf8_strlen(text.data(), static_cast<gssize>(length)));
}

size_t byte_of_character(const std::string& text, int character) {
    if (character < 0 || character >= characters_in(text)) return text.size();
    return static_cast<size_t>(g_utf8_offset_to_pointer(text.data(), character) - text.data());
}

std::string part_of(const std::string& text, TextRange range) {
    const size_t begin = byte_of_character(text, range.begin);
    const size_t end = byte_of_character(text, range.end);
    return begin < end ? text.substr(begin, end - begin) : "";
}

TextRange unit_at(const std::string& text, int character, TextUnit unit) {
    const int count = characters_in(text);
    if (unit == TextUnit::whole) return {0, count};
    if (character < 0 || character >= count) return {count, count};
    if (unit == TextUnit::character) return {character, character + 1};
    TextRange word = {character, character + 1};
    while (!begins_word(text, word.begin)) word.begin--;
    while (word.end < count && !begins_word(text, word.end)) word.end++;
    return word;
}

TextChange change_between(const std::string& before, const std::string& now) {
    const int before_count = characters_in(before), now_count = characters_in(now);
    const int common = std::min(before_count, now_count);
    const auto same = [&](int in_before, int in_now) {
        return part_of(before, {in_before, in_before + 1}) == part_of(now, {in_now, in_now + 1});
    };
    int first = 0, last = 0;
    while (first < common && same(first, first)) first++;
    while (last < common - first && same(before_count - 1 - last, now_count - 1 - last)) last++;
    return {{first, before_count - last}, {first, now_count - last}};
}
