// A moment that some code waits for.
#pragma once

#include <time.h>

// For measuring how long something takes: setting the machine's clock does not move it.
inline double seconds_now() {
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

struct Deadline {
    double due = 0;  // 0: none

    void start(double delay) { due = seconds_now() + delay; }
    void stop() { due = 0; }
    bool is_running() const { return due > 0; }
    bool is_due() const { return due > 0 && due <= seconds_now(); }
    // The earlier of the two, 0 if neither is running.
    static double earlier(double one, double other) {
        if (one <= 0 || other <= 0) return one > 0 ? one : other;
        return one < other ? one : other;
    }
};
