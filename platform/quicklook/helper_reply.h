// Reads the answer of a helper program, which may be any bytes: a file may have taken the program
// over. Any thread.
#pragma once

#include <chrono>

#include "quicklook/picture.h"
#include "quicklook/reply.h"

namespace thumbnails {

enum class Ending {
    answered,   // the reply is whole
    broke_off,  // the program ended before, or wrote nonsense
    timed_out,
    no_program,
};

struct Answer {
    Ending ending = Ending::no_program;
    Reply reply = {};
    Picture picture;  // when the reply's outcome says so
};

// Reads until the answer is whole, makes no sense or the deadline has passed. A picture that is
// larger than the box makes no sense.
Answer read_answer(int from, Box box, std::chrono::steady_clock::time_point deadline);

}  // namespace thumbnails
