// A file system that passes everything on to a folder and fails on request: FUSE, mounted in the
// caller's own namespace.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <string>

namespace test {

// Shared with the process that serves it.
struct Faults {
    enum How : int {
        never,
        once,       // that call fails and does nothing
        once_late,  // that call fails, but its work is done
        from_then,  // that call and all after it fail
        slow_once,  // that call is answered late
    };
    std::atomic<int> calls{0};  // calls so far, or since it was set to 0
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

// Mounts the file system on `folder` for this process and its children; its contents are in
// `behind`. Returns the process that serves it, a child, or 0 where nobody may mount one. The
// caller must have one thread.
pid_t mount_faulty_file_system(const std::string& folder, const std::string& behind,
                               Faults** faults);

}  // namespace test
