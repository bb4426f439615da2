// What a decoder is called with:
//   delvio-decode-KIND CAGE WIDTH HEIGHT NAME SCALE PAPER SIZES
// CAGE is bubblewrap or plain, SCALE the screen's in percent, PAPER light or dark, SIZES how sizes
// are written (size_words.h). One thread.
#pragma once

#include <string>

#include "quicklook/picture.h"

namespace thumbnails {

struct DecoderCall {
    Box box;           // in pixels
    std::string name;  // of the file, without its folder
    double scale = 1;  // pixels a point
    bool is_dark = false;
    std::string size_words = {};
};

// Gives up the decoder's rights, calls `decode`, and ends the process. When the rights cannot be
// given up, the answer is that there is no file.
[[noreturn]] void run_decoder(int count, char** words, void (*decode)(const DecoderCall& call));

}  // namespace thumbnails
