// Preloaded into a program: what the program reads about its own memory comes from a file of the
// test.
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
