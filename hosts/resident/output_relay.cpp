#include "resident/output_relay.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace resident {

namespace {

constexpr int most_waiting = 1 << 20;
constexpr size_t block_size = 65536;

bool are_same_file(int one, int other) {
    struct stat first, second;
    return fstat(one, &first) == 0 && fstat(other, &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

}  // namespace

StreamRelay::StreamRelay(int target) : target_(target) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return;
    reader_ = Descriptor(ends[0]);
    writer_ = Descriptor(ends[1]);
    fcntl(writer_.get(), F_SETPIPE_SZ, most_waiting);  // a smaller pipe does as well
}

pollfd StreamRelay::watched() const {
    if (!taken_.empty()) return {target_, POLLOUT, 0};
    return {reader_.get(), POLLIN, 0};  // poll() ignores descriptors below 0
}

void StreamRelay::pass() {
    if (taken_.empty()) take();
    if (!taken_.empty()) give();
}

void StreamRelay::take() {
    taken_.resize(block_size);
    const ssize_t size = reader_ ? read(reader_.get(), taken_.data(), block_size) : 0;
    taken_.resize(size > 0 ? static_cast<size_t>(size) : 0);
    if (size == 0) reader_.close();
}

// A pipe that poll() calls writable takes this much at once.
void StreamRelay::give() {
    pollfd writable = {target_, POLLOUT, 0};
    if (poll(&writable, 1, 0) <= 0) return;
    const size_t most = std::min<size_t>(taken_.size(), PIPE_BUF);
    const ssize_t size = write(target_, taken_.data(), most);
    if (size > 0) {
        taken_.erase(0, static_cast<size_t>(size));
    } else if (errno != EINTR && errno != EAGAIN) {
        reader_.close();  // nobody reads, which the host's next line finds out
        taken_.clear();
    }
}

bool StreamRelay::is_done() {
    if (taken_.empty()) take();
    return taken_.empty();
}

OutputRelay::OutputRelay()
    : are_one_(are_same_file(STDOUT_FILENO, STDERR_FILENO)),
      output_(STDOUT_FILENO),
      error_(STDERR_FILENO) {}

void OutputRelay::close_ends() {
    output_.close_writer();
    error_.close_writer();
}

void OutputRelay::watch(pollfd watched[streams]) const {
    watched[0] = output_.watched();
    watched[1] = error_.watched();
}

void OutputRelay::pass(const pollfd watched[streams]) {
    if (watched[0].revents) output_.pass();
    if (watched[1].revents) error_.pass();
}

bool OutputRelay::pass_rest(int interruption, bool waits) {
    for (;;) {
        const bool output_is_done = output_.is_done(), error_is_done = error_.is_done();
        if (output_is_done && error_is_done) return true;
        pollfd all[1 + streams] = {{interruption, POLLIN, 0}};
        watch(all + 1);
        if (output_is_done) all[1].fd = -1;
        if (error_is_done) all[2].fd = -1;
        const int ready = poll(all, 1 + streams, waits ? -1 : 0);
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0 || all[0].revents) return false;
        pass(all + 1);
    }
}

}  // namespace resident
