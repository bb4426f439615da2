#include "quicklook/decoder/decoder_call.h"

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <exception>

#include "quicklook/decoder/number_word.h"
#include "quicklook/decoder/reply_writer.h"
#include "quicklook/decoder/restrictions.h"

namespace thumbnails {

namespace {

enum { cage = 1, width, height, name, scale, paper, sizes };

void decode_caged(int count, char** words, void (*decode)(const DecoderCall& call)) {
    if (count <= sizes || !restrict_decoder(strcmp(words[cage], "bubblewrap") == 0)) {
        return write_reply(Outcome::none);
    }
    const Box box = {std::max(1, number_word(words[width])),
                     std::max(1, number_word(words[height]))};
    decode({box, words[name], std::clamp(number_word(words[scale]) / 100.0, 0.5, 8.0),
            strcmp(words[paper], "dark") == 0, words[sizes]});
}

}  // namespace

void run_decoder(int count, char** words, void (*decode)(const DecoderCall& call)) {
    try {
        decode_caged(count, words, decode);
    } catch (const std::exception&) {
        // Nothing has been written: an answer is the last thing that a decoder does.
        write_reply(Outcome::broken);
    }
    // The kernel frees faster than destructors.
    _exit(0);
}

}  // namespace thumbnails
