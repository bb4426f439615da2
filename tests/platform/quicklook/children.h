// The child processes of a test.
#pragma once

#include <errno.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

// Whether all children are gone and reaped, within a minute. Does not reap any itself.
inline bool no_child_is_left() {
    for (int i = 0; i < 3000; i++) {
        siginfo_t state;
        const int options = WEXITED | WNOHANG | WNOWAIT;
        if (waitid(P_ALL, 0, &state, options) == -1 && errno == ECHILD) return true;
        usleep(20000);
    }
    return false;
}

}  // namespace test
