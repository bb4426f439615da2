// Names and messages for people to read.
#pragma once

#include <string>
#include <string_view>

namespace operations {

// The text on one line: control characters, what breaks or reorders a line, and bytes that are not
// UTF-8 are written as escapes, such as \n, \x1b and \u202e.
std::string VisibleText(std::string_view text);

// Such text in double quotes, for a terminal: "notes.txt".
std::string Quoted(std::string_view text);
// The last component of a path; of the root "/".
std::string_view LastComponent(std::string_view path);
// It, quoted.
std::string QuotedName(std::string_view path);
// The same as windows write it: “notes.txt”.
std::string WindowName(std::string_view path);

}  // namespace operations
