// Preloaded: what a program reads of its own memory stands in a file of the test's.
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

extern "C" FILE* fopen(const char* path, const char* mode) {
    using Open = FILE* (*)(const char*, const char*);
    static const auto open = reinterpret_cast<Open>(dlsym(RTLD_NEXT, "fopen"));
    const char* told = getenv("DELVIO_TEST_PAGES");
    return open(told && strcmp(path, "/proc/self/statm") == 0 ? told : path, mode);
}
