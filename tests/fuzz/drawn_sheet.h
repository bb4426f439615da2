// What the targets of decoders have in place of a decoder's start. File and answer are files in
// memory, and the process goes on after each input. Included once in a program.
#pragma once

#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include "input.h"
#include "quicklook/decoder/decoder_call.h"
#include "quicklook/helper_reply.h"
#include "require.h"

namespace thumbnails {

void run_decoder(int, char**, void (*)(const DecoderCall&)) { abort(); }

}  // namespace thumbnails

namespace fuzz {

// In the processor's time of this process.
inline clock_t begin_of_input;

// Before libFuzzer opens files of its own.
inline const bool has_descriptors = [] {
    for (const int wanted : {thumbnails::reply_descriptor, thumbnails::file_descriptor}) {
        const int file = memfd_create("decoder", 0);
        require(dup2(file, wanted) == wanted, "a descriptor");
        if (file != wanted) close(file);
    }
    return true;
}();

inline void refill(int file, const std::string& bytes) {
    require(ftruncate(file, 0) == 0 && lseek(file, 0, SEEK_SET) == 0, "an empty file");
    require(write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()),
            "written");
    lseek(file, 0, SEEK_SET);
}

// How a decoder is called. The boxes are small, so that many inputs are tried.
inline thumbnails::DecoderCall call_of(Input* input, const std::string& name) {
    const double scales[] = {1, 2, 1.25, 0.5, 8};
    const thumbnails::Box box = {input->byte() + 1, input->byte() + 1};
    const uint8_t look = input->byte();
    return {box, name, scales[look / 2 % std::size(scales)], look % 2 == 1};
}

// Calls a decoder for a file of these bytes. The answer is one whole picture, or a refusal.
inline void expect_answer(const std::string& file, const thumbnails::DecoderCall& call,
                          void (*decode)(const thumbnails::DecoderCall& call)) {
    using namespace thumbnails;
    refill(file_descriptor, file);
    refill(reply_descriptor, "");
    begin_of_input += clock();
    decode(call);
    lseek(reply_descriptor, 0, SEEK_SET);
    const Answer answer = read_answer(reply_descriptor, call.box,
                                      std::chrono::steady_clock::now() + std::chrono::hours(1));
    require(answer.ending == Ending::answered, "an answer that makes sense");
    char more;
    require(read(reply_descriptor, &more, 1) == 0, "one answer");
    const Outcome outcome = answer.reply.outcome;
    if (outcome != Outcome::picture) {
        require(outcome == Outcome::unsupported || outcome == Outcome::broken, "a refusal");
        return;
    }
    require(answer.picture.width == call.box.width, "a sheet is as wide as the box");
    for (size_t i = 3; i < answer.picture.pixels.size(); i += 4) {
        require(answer.picture.pixels[i] == 255, "a sheet is not clear");
    }
}

}  // namespace fuzz

// A decoder measures its processor time from its start; here from the begin of its input.
extern "C" {
clock_t __real_clock();
clock_t __wrap_clock() { return __real_clock() - fuzz::begin_of_input; }
}
