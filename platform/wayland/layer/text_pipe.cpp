#include "wayland/layer/text_pipe.h"

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>

namespace {

// The signal that a reader has gone away ends a program that does not expect it. Where the thread
// did not hold signals of this kind back before, it has taken the one of its own write.
class HeldBackSignal {
  public:
    HeldBackSignal() {
        sigemptyset(&pipe_);
        sigaddset(&pipe_, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
    }
    ~HeldBackSignal() {
        if (sigismember(&before_, SIGPIPE)) return;
        const timespec at_once = {};
        while (sigtimedwait(&pipe_, nullptr, &at_once) > 0) {
        }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    HeldBackSignal(const HeldBackSignal&) = delete;
    HeldBackSignal& operator=(const HeldBackSignal&) = delete;

  private:
    sigset_t pipe_, before_;
};

}  // namespace

void give_text(int out, const std::string& text) {
    constexpr int longest_pause = 5000;  // milliseconds
    const HeldBackSignal held_back;
    size_t done = 0;
    pollfd writable = {out, POLLOUT, 0};
    while (done < text.size() && poll(&writable, 1, longest_pause) > 0) {
        // A pipe that is writable takes this many bytes at once.
        constexpr size_t most = 4096;
        const ssize_t count = write(out, text.data() + done, std::min(most, text.size() - done));
        if (count <= 0) break;
        done += static_cast<size_t>(count);
    }
    close(out);
}
