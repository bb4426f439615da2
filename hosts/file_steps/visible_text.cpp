#include "file_steps/visible_text.h"

#include <host/text.h>

#include <stdint.h>
#include <stdio.h>

namespace operations {

namespace {

// Characters that control a terminal, break a line, reorder the text around them or are invisible.
// The joiners U+200C and U+200D are not listed: some languages need them.
constexpr struct {
    uint32_t first, last;
} unseen[] = {
    {0x00, 0x1F},     {0x7F, 0x9F},     {0xAD, 0xAD},     {0x61C, 0x61C},
    {0x180E, 0x180E}, {0x200B, 0x200B}, {0x200E, 0x200F}, {0x2028, 0x202E},
    {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE007F},
};

constexpr struct {
    uint32_t character;
    const char* escape;
} short_escapes[] = {{'\n', "\\n"}, {'\r', "\\r"}, {'\t', "\\t"}};

bool is_unseen(uint32_t character) {
    for (const auto& range : unseen) {
        if (character >= range.first && character <= range.last) return true;
    }
    return false;
}

// The length of a sequence that begins with this byte; 0 for a byte that begins none.
size_t length_after(unsigned char first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first < 0xE0) return 2;
    if (first >= 0xE0 && first < 0xF0) return 3;
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

// The length in bytes of the character at the beginning; 0 when there is none.
size_t read_character(std::string_view text, uint32_t* character) {
    static constexpr uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(text[0]);
    const size_t length = length_after(first);
    if (length == 0 || length > text.size()) return 0;
    *character = length == 1 ? first : first & (0x7Fu >> length);
    for (size_t at = 1; at < length; at++) {
        const auto next = static_cast<unsigned char>(text[at]);
        if ((next & 0xC0) != 0x80) return 0;
        *character = *character << 6 | (next & 0x3F);
    }
    const bool is_surrogate = *character >= 0xD800 && *character < 0xE000;
    return *character < least[length] || is_surrogate || *character > 0x10FFFF ? 0 : length;
}

std::string formatted(const char* format, uint32_t value) {
    char text[16];
    snprintf(text, sizeof text, format, value);
    return text;
}

std::string escape_of(uint32_t character) {
    for (const auto& known : short_escapes) {
        if (known.character == character) return known.escape;
    }
    if (character < 0x80) return formatted("\\x%02x", character);
    return formatted(character > 0xFFFF ? "\\U%08x" : "\\u%04x", character);
}

}  // namespace

std::string visible_text(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        uint32_t character = 0;
        const size_t length = read_character(text, &character);
        if (length == 0) {
            shown += formatted("\\x%02x", static_cast<unsigned char>(text[0]));
        } else if (is_unseen(character)) {
            shown += escape_of(character);
        } else {
            shown += text.substr(0, length);
        }
        text.remove_prefix(length > 0 ? length : 1);
    }
    return shown;
}

std::string in_quotes(std::string_view text) { return '"' + visible_text(text) + '"'; }

std::string_view last_component(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    return name.empty() ? path : name;
}

std::string quoted_name(std::string_view path) { return in_quotes(last_component(path)); }

std::string window_name(std::string_view path) {
    // Translators: a file name in quotes.
    return translated("“%s”", {visible_text(last_component(path))});
}

}  // namespace operations
