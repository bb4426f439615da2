// Waits until the platform no longer trusts what it has seen on disk.
#pragma once

#include <unistd.h>

#include "desktop/moments.h"

namespace test {

// Measured by the platform's own clock.
inline void let_a_moment_pass() {
    const int64_t start = files::milliseconds_now();
    while (files::milliseconds_now() - start <= files::one_moment) usleep(1000);
}

}  // namespace test
