// A file system that stops answering: FUSE, mounted in a namespace of the caller's own.
#pragma once

#include <sys/types.h>

#include <string>

namespace test {

enum class Silence {
    at_lookup,  // already the question whether the file is there
    at_open,    // the file is there
    at_read,    // the file can be opened
};

// Mounts it on `folder`, where it seems to hold a file of 100,000 bytes of any name. The process
// that serves it, a child; whoever waits for the file system waits until that is killed. 0 where
// the system lets nobody mount one. For a process with one thread, which is about to end.
pid_t mount_silent_file_system(const std::string& folder, Silence silence);

}  // namespace test
