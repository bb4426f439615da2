// Names and messages for people to read.
#pragma once

#include <string>
#include <string_view>

namespace operations {

// The text on one line: control characters, characters that break or reorder a line, and bytes that
// are not UTF-8 are written as escapes, such as \n, \x1b and \u202e.
std::string visible_text(std::string_view text);

// visible_text() in double quotes, for a terminal: "notes.txt".
std::string in_quotes(std::string_view text);
// The last component of a path; "/" for the root.
std::string_view last_component(std::string_view path);
// The last component, quoted for a terminal.
std::string quoted_name(std::string_view path);
// The last component, quoted for a window: “notes.txt”.
std::string window_name(std::string_view path);

}  // namespace operations
