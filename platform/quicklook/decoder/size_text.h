// How a decoder writes the size of a file. Any thread.
#pragma once

#include <stdint.h>

#include <string>

namespace thumbnails {

// `words` are those of size_words.h; without them the text is the plain number. Empty for a size
// below 0.
std::string size_text(int64_t size, const std::string& words);

}  // namespace thumbnails
