#include "command/plain_arguments.h"

#include <stdint.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// The strings of the arguments and the environment, which are contiguous in memory, and their copy.
char* strings;
char* copy;
unsigned long size;

__attribute__((no_sanitize("address", "undefined"))) char* end_of(char* string) {
    while (*string) ++string;
    return string + 1;
}

// Runs before any library has been set up, so it uses plain memory and system calls only.
__attribute__((no_sanitize("address", "undefined"))) void hide(int count, char** arguments,
                                                               char** environment) {
    if (count < 1) return;
    char* end = end_of(arguments[count - 1]);
    for (char** variable = environment; *variable; ++variable) {
        if (*variable == end) end = end_of(*variable);
    }
    size = static_cast<unsigned long>(end - arguments[0]);
    const long memory = syscall(SYS_mmap, nullptr, size, PROT_READ | PROT_WRITE,
                                MAP_PRIVATE | MAP_ANONYMOUS, -1, 0L);
    if (memory < 0 && memory > -4096) return;
    strings = arguments[0];
    copy = reinterpret_cast<char*>(static_cast<uintptr_t>(memory));
    for (unsigned long i = 0; i < size; ++i) {
        copy[i] = strings[i];
        if (static_cast<unsigned char>(strings[i]) >= 0x80) strings[i] = '?';
    }
}

__attribute__((section(".preinit_array"), used)) void (*const hide_first)(int, char**,
                                                                          char**) = hide;

}  // namespace

void restore_arguments() {
    if (!copy) return;
    for (unsigned long i = 0; i < size; ++i) {
        if (static_cast<unsigned char>(copy[i]) >= 0x80) strings[i] = copy[i];
    }
    munmap(copy, size);
    copy = nullptr;
}
