#include "resident/memory_end.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <sys/uio.h>
#include <unistd.h>

#include <iterator>
#include <new>

namespace resident {

namespace {

constexpr int failed = 1;

iovec part(const char* text) { return {const_cast<char*>(text), strlen(text)}; }

[[noreturn]] void tell_and_end() {
    const iovec line[] = {part("delvio: "), part(strerror(ENOMEM)), part("\n")};
    [[maybe_unused]] const ssize_t written = writev(fileno(stderr), line, std::size(line));
    _exit(failed);
}

}  // namespace

void end_when_memory_ends() { std::set_new_handler(tell_and_end); }

}  // namespace resident
