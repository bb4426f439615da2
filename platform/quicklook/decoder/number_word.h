// Numbers among the words that our own programs pass to a decoder. One thread.
#pragma once

#include <stdlib.h>

namespace thumbnails {

// 0 for a word that is no number.
inline int number_word(const char* word) { return static_cast<int>(strtol(word, nullptr, 10)); }

}  // namespace thumbnails
