// Text for a terminal. File names may hold any characters; a mark replaces those that would change
// the terminal's state or the reading order of a line.
#pragma once

#include <string>
#include <string_view>

// The text with `mark` in place of each control character (C0, DEL, C1), line and paragraph
// separator and character that sets the direction of text, and of each byte that is not UTF-8.
std::string printable(std::string_view text, std::string_view mark);

// The JSON text with each of these characters as an escape ("\u009b").
std::string printable_json(std::string_view json);
