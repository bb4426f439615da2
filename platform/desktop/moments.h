// How long something that was seen on disk is believed.
#pragma once

#include <stdint.h>
#include <time.h>

namespace files {

// Accurate to some milliseconds, and cheap enough to call for every file.
inline int64_t milliseconds_now() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return now.tv_sec * INT64_C(1000) + now.tv_nsec / 1000000;
}

const int64_t one_moment = 100;

}  // namespace files
