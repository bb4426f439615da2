#include "command/printable.h"

#include <glib.h>

namespace {

bool changes_direction(gunichar character) {
    return character == 0x061c || character == 0x200e || character == 0x200f ||
           (character >= 0x202a && character <= 0x202e) ||
           (character >= 0x2066 && character <= 0x2069);
}

bool is_unprintable(gunichar character) {
    const bool control = character < 0x20 || (character >= 0x7f && character < 0xa0);
    const bool separator = character == 0x2028 || character == 0x2029;
    return control || separator || changes_direction(character);
}

bool is_plain(char byte) { return byte >= 0x20 && byte < 0x7f; }

// Without a way out of the loop, several bytes are compared at a time.
bool has_only_plain(std::string_view text) {
    bool plain = true;
    for (const char byte : text) plain &= is_plain(byte);
    return plain;
}

// Calls `take` with each character; for a byte that is not part of one, with -1.
template <typename Take>
void for_each_character(std::string_view text, Take take) {
    while (!text.empty()) {
        if (is_plain(text[0])) {  // as most are
            take(static_cast<gunichar>(text[0]), text.substr(0, 1));
            text.remove_prefix(1);
            continue;
        }
        const auto left = static_cast<gssize>(text.size());
        const gunichar found = g_utf8_get_char_validated(text.data(), left);
        const bool valid = found < 0x80000000;
        const size_t length = valid ? static_cast<size_t>(g_unichar_to_utf8(found, nullptr)) : 1;
        take(valid ? found : static_cast<gunichar>(-1), text.substr(0, length));
        text.remove_prefix(length);
    }
}

}  // namespace

std::string printable(std::string_view text, std::string_view mark) {
    if (has_only_plain(text)) return std::string(text);
    std::string result;
    result.reserve(text.size());
    const char* kept = text.data();  // up to here, `result` has the text
    for_each_character(text, [&](gunichar character, std::string_view bytes) {
        const bool invalid = character == static_cast<gunichar>(-1);
        if (!invalid && !is_unprintable(character)) return;
        result.append(kept, bytes.data()) += mark;
        kept = bytes.data() + bytes.size();
    });
    return result.append(kept, text.data() + text.size());
}

std::string printable_json(std::string_view json) {
    std::string result;
    for_each_character(json, [&](gunichar character, std::string_view bytes) {
        if (character == '\n' || !is_unprintable(character)) {
            result += bytes;
            return;
        }
        char escape[sizeof "\\u0000"];
        snprintf(escape, sizeof escape, "\\u%04x", character & 0xffff);
        result += escape;
    });
    return result;
}
