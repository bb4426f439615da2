// The command line of the helper program, for its callers and for itself:
//
//   delvio-thumbnailer MODE CAGE MEGABYTES PROCESSOR-SECONDS SECONDS WIDTH HEIGHT SCALE PAPER
//                      SIZES PATH [SECONDS COMMAND...]
//
// MODE is the name of a decoder, program (a thumbnailer, with its command), or ready and
// ready-program, which only try the way. CAGE is bubblewrap or plain, SCALE the screen's in
// percent, PAPER light or dark, SIZES how sizes are written (size_words.h). The answer is a Reply
// on reply_descriptor.
#pragma once

namespace thumbnails::helper_words {

inline constexpr char program[] = "delvio-thumbnailer";

// Where each word stands.
enum Place {
    mode = 1,
    cage,
    megabytes,
    processor_seconds,
    seconds,
    width,
    height,
    scale,
    paper,
    sizes,
    path,
    command
};

}  // namespace thumbnails::helper_words
