#pragma once

#include <sys/types.h>

extern "C" {

struct timeval {
    time_t tv_sec;
    suseconds_t tv_usec;
};

int gettimeofday(struct timeval* now, void* zone);
}
