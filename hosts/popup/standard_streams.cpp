#include "popup/standard_streams.h"

#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <unistd.h>

#include <initializer_list>

// The sanitizers write to descriptor 2 unless told otherwise.
extern "C" __attribute__((weak)) void __sanitizer_set_report_fd(void* descriptor);

namespace {

constexpr int first_private_descriptor = 64;

// A stream on a private copy of the descriptor; `original` when there is none to copy.
FILE* private_stream(int descriptor, FILE* original, int mode) {
    const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, first_private_descriptor);
    if (copy < 0) return original;
    FILE* stream = fdopen(copy, "w");
    if (!stream) return original;
    setvbuf(stream, nullptr, isatty(copy) && mode == _IOFBF ? _IOLBF : mode, BUFSIZ);
    return stream;
}

}  // namespace

void KeepStreamsPrivate() {
    stdout = private_stream(STDOUT_FILENO, stdout, _IOFBF);
    stderr = private_stream(STDERR_FILENO, stderr, _IONBF);
    if (__sanitizer_set_report_fd && fileno(stderr) != STDERR_FILENO) {
        __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<intptr_t>(fileno(stderr))));
    }
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    if (nothing < 0) return;
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nothing, standard);
    if (nothing > STDERR_FILENO) close(nothing);
}
