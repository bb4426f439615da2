// A clock that a target moves on, so that the delays of the code cost no time. The target is linked
// with --wrap=clock_gettime. Included once in a program.
#pragma once

#include <time.h>

namespace fuzz {

inline long milliseconds_ahead = 0;

}  // namespace fuzz

extern "C" int __real_clock_gettime(clockid_t clock, timespec* time);

extern "C" int __wrap_clock_gettime(clockid_t clock, timespec* time) {
    const int result = __real_clock_gettime(clock, time);
    if (clock != CLOCK_MONOTONIC || result != 0) return result;
    const long nanoseconds = time->tv_nsec + fuzz::milliseconds_ahead % 1000 * 1000000;
    time->tv_sec += fuzz::milliseconds_ahead / 1000 + nanoseconds / 1000000000;
    time->tv_nsec = nanoseconds % 1000000000;
    return 0;
}
