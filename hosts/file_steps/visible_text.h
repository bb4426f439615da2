// Names and messages for people to read.
#pragma once

#include <string>
#include <string_view>

namespace operations {

// The text on one line: control characters, characters that break or reorder a line, and bytes that
// are not UTF-8 are written as escapes, such as \n, \x1b and \u202e.
std::string VisibleText(std::string_view text);

// VisibleText() in double quotes, for a terminal: "notes.txt".
std::string Quoted(std::string_view text);
// The last component of a path; "/" for the root.
std::string_view LastComponent(std::string_view path);
// The last component, quoted for a terminal.
std::string QuotedName(std::string_view path);
// The last component, quoted for a window: “notes.txt”.
std::string WindowName(std::string_view path);

}  // namespace operations
