// Opening files, and what is done with an open one.
#pragma once

#include <sys/types.h>

#define O_RDONLY 0x0000
#define O_NONBLOCK 0x0004
#define O_CLOEXEC 0x1000000

extern "C" {

int open(const char* path, int flags, ...);
ssize_t read(int descriptor, void* bytes, size_t size);
int close(int descriptor);
}
