// What a property list may be before a toolkit's parser, which nests as deep as the list does and
// takes its counts at their word, sees it. Any thread.
#pragma once

#include <stddef.h>

#include <string_view>

inline constexpr int deepest_list = 100;
inline constexpr int most_list_items = 200000;
inline constexpr size_t largest_list = 16 << 20;

// Whether these bytes, as a property list of any format, stay within the limits and, in the formats
// that point into themselves, within the bytes. What is no list at all may pass: parsers refuse it.
bool is_bounded_list(std::string_view bytes);

// Per format; see is_bounded_list().
bool is_bounded_text_list(std::string_view bytes);
bool is_bounded_xml_list(std::string_view bytes);
bool is_bounded_binary_list(std::string_view bytes);
