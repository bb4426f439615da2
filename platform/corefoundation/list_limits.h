// What a property list may be, checked before a toolkit's parser sees it: such a parser recurses as
// deep as the list nests and believes the counts in it. Any thread.
#pragma once

#include <stddef.h>

#include <string_view>

inline constexpr int deepest_list = 100;
inline constexpr int most_list_items = 200000;
inline constexpr size_t largest_list = 16 << 20;

// Whether these bytes, read as a property list of any format, stay within the limits. References of
// formats that point into themselves must stay within the bytes. Bytes that are no list at all may
// pass: parsers refuse them.
bool is_bounded_list(std::string_view bytes);

// The checks of each format; see is_bounded_list().
bool is_bounded_text_list(std::string_view bytes);
bool is_bounded_xml_list(std::string_view bytes);
bool is_bounded_binary_list(std::string_view bytes);
