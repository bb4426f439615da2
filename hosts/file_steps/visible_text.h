// Names and messages for people to read.
#pragma once

#include <string>
#include <string_view>

namespace operations {

// The text on one line: control characters, what breaks or reorders a line, and bytes that are not
// UTF-8 are written as escapes, such as \n, \x1b and \u202e.
std::string VisibleText(std::string_view text);

}  // namespace operations
