// A file system that stops answering: FUSE, mounted in the caller's own namespace.
#pragma once

#include <sys/types.h>

#include <string>

namespace test {

enum class Silence {
    when_stopped,  // answers until its process is stopped; answers are not cached
    at_lookup,     // does not even answer whether the file exists
    at_open,       // the file exists, but opening it hangs
    at_read,       // the file can be opened, but reading it hangs
};

// Mounts the file system on `folder`. Under any name it seems to hold a file of 100,000 bytes; with
// `when_stopped` it has three files that can be listed and read: a.txt, b.txt and c.txt. Returns
// the process that serves it, a child. A call that waits for the file system waits until that
// process is killed. Returns 0 where the system does not allow the mount. The caller must have one
// thread; it stays in the new namespace.
pid_t mount_silent_file_system(const std::string& folder, Silence silence);

}  // namespace test
