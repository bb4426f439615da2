// How sizes are written in the user's language, in a form that a decoder gets as one word: lines
// with 0, 1, 2, 3, 11 and 100 bytes, kilobytes and so on up to terabytes, each with %s for the
// number, and the number 1.5. A decoder sees no catalogues, and no locale of the user's.
#pragma once

#include <string>

namespace thumbnails {

// Any thread.
std::string size_words();

}  // namespace thumbnails
