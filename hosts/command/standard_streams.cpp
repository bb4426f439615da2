#include "command/standard_streams.h"

#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <unistd.h>

#include <initializer_list>

// The sanitizers write to descriptor 2 unless told otherwise.
extern "C" __attribute__((weak)) void __sanitizer_set_report_fd(void* descriptor);

namespace {

constexpr int first_private_descriptor = 64;

FILE* output;

// A high number where possible, so that it does not collide with files that are opened later.
int private_copy(int descriptor) {
    const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, first_private_descriptor);
    return copy >= 0 ? copy : fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

// A stream on a private copy of the descriptor; `original` if it cannot be copied.
FILE* private_stream(int descriptor, FILE* original, int mode) {
    const int copy = private_copy(descriptor);
    if (copy < 0) return original;
    FILE* stream = fdopen(copy, "w");
    if (!stream) return original;
    setvbuf(stream, nullptr, isatty(copy) && mode == _IOFBF ? _IOLBF : mode, BUFSIZ);
    return stream;
}

}  // namespace

void keep_streams_private() {
    stdout = private_stream(STDOUT_FILENO, stdout, _IOFBF);
    stderr = private_stream(STDERR_FILENO, stderr, _IONBF);
    if (__sanitizer_set_report_fd && fileno(stderr) != STDERR_FILENO) {
        __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<intptr_t>(fileno(stderr))));
    }
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    if (nothing < 0) return;
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        const bool used = standard == fileno(stdout) || standard == fileno(stderr);
        if (!used) dup2(nothing, standard);
    }
    if (nothing > STDERR_FILENO) close(nothing);
}

void keep_output_pure() {
    output = stdout;
    stdout = stderr;
}

FILE* output_stream() { return output ? output : stdout; }
