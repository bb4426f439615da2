#include "resident/ending_signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

namespace resident {

namespace {

constexpr int numbers[] = {SIGINT, SIGTERM, SIGHUP};

}  // namespace

EndingSignals::EndingSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : numbers) {
        sigaddset(&set, number);
        // An ignored signal never arrives at a descriptor, and the command ends at it all the same.
        signal(number, SIG_DFL);
    }
    sigprocmask(SIG_BLOCK, &set, &before_);
    descriptor_ = operations::Descriptor(signalfd(-1, &set, SFD_CLOEXEC));
}

EndingSignals::~EndingSignals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

int EndingSignals::take() const {
    signalfd_siginfo info = {};
    const ssize_t size = read(descriptor(), &info, sizeof info);
    return size == sizeof info ? static_cast<int>(info.ssi_signo) : SIGTERM;
}

}  // namespace resident
