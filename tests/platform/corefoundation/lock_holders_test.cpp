// Who may hold the lock of the defaults, while processes end.
#include "corefoundation/lock_holders.h"

#include <dlfcn.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <string>

namespace {

bool processes_end = false;
int ended = 0;

bool is_of_a_process(int file) {
    char path[PATH_MAX] = "";
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    if (readlink(link.c_str(), path, sizeof path - 1) < 0) return false;
    return strncmp(path, "/proc/", 6) == 0;
}

}  // namespace

// Replaces the C library's function: each process ends between the opening of its file and the
// reading.
extern "C" ssize_t read(int file, void* bytes, size_t size) {
    using Read = ssize_t (*)(int, void*, size_t);
    static const auto stock = reinterpret_cast<Read>(dlsym(RTLD_NEXT, "read"));
    if (!processes_end || !is_of_a_process(file)) return stock(file, bytes, size);
    ended++;
    errno = ESRCH;
    return -1;
}

TEST(LockHolders, AProcessThatEndsWhileItIsLookedAtHoldsNothing) {
    processes_end = true;
    EXPECT_FALSE(may_be_held_by_another({time(nullptr), 0}));
    processes_end = false;
    EXPECT_GT(ended, 0);
}
