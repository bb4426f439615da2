// Passes on what the host prints to the client's own output. The host writes into pipes that never
// make it wait, so a terminal that stands still, or a reader that does not read, holds up its own
// client and nobody else. A megabyte waits for such a reader; what is more is lost. Main thread.
#pragma once

#include <poll.h>

#include <string>

#include "file_steps/descriptor.h"

namespace resident {

using operations::Descriptor;

// One stream.
class StreamRelay {
  public:
    explicit StreamRelay(int target);
    int writer() const { return writer_.get(); }
    void close_writer() { writer_.close(); }
    // What poll() has to wait for before pass() can do something.
    pollfd watched() const;
    // Passes on one block.
    void pass();
    // Whether all that the host has written so far is passed on.
    bool is_done();

  private:
    void take();
    void give();

    const int target_;
    Descriptor reader_, writer_;
    std::string taken_;  // and not passed on yet
};

// Standard output and standard error. If both are the same file, one pipe keeps their order.
class OutputRelay {
  public:
    OutputRelay();
    int output() const { return output_.writer(); }
    int error() const { return are_one_ ? output() : error_.writer(); }
    // The host has its ends; from now on the streams end with it.
    void close_ends();

    static constexpr int streams = 2;
    void watch(pollfd watched[streams]) const;
    void pass(const pollfd watched[streams]);
    // Passes on the rest, until `interruption` can be read. False when something is left. With
    // `waits` false, it takes only what readers take at once.
    bool pass_rest(int interruption, bool waits);

  private:
    const bool are_one_;
    StreamRelay output_, error_;
};

}  // namespace resident
