// The text of a file whose encoding nobody tells. One thread.
#pragma once

#include <string>

namespace thumbnails {

// The bytes, which may end within a character, as valid UTF-8: by a mark at the start, as UTF-8 if
// they are, else in the encoding that they look most like. Control characters are shown as signs.
// Empty for bytes that are no text.
std::string text_of_bytes(const std::string& bytes);

}  // namespace thumbnails
