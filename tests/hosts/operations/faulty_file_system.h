// A file system that passes everything on to a folder, and fails when it is told to: FUSE, mounted
// in a namespace of the caller's own.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <string>

namespace test {

// Shared with the process that serves it.
struct Faults {
    enum How : int {
        never,
        once,       // that call fails, and nothing comes of it
        once_late,  // that call fails, but what was asked for is done
        from_then,  // that call and all after it fail
        slow_once,  // that call is answered late
    };
    std::atomic<int> calls{0};  // so far; counts on after it was set to 0
    std::atomic<int> at{0};     // the call that fails
    std::atomic<How> how{never};
    std::atomic<int> error{5};    // EIO
    std::atomic<int> delay{200};  // milliseconds

    void set(How what, int call) {
        how = never;
        calls = 0;
        at = call;
        how = what;
    }
};

// Mounts it on `folder` for this process and its children; what is in it is in `behind`. The
// process that serves it, a child; 0 where nobody may mount one. For a process with one thread.
pid_t mount_faulty_file_system(const std::string& folder, const std::string& behind,
                               Faults** faults);

}  // namespace test
