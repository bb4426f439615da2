// A file system that stops answering: FUSE, mounted in a namespace of the caller's own.
#pragma once

#include <sys/types.h>

#include <string>

namespace test {

enum class Silence {
    when_stopped,  // it answers until its process is stopped, and lets nobody remember answers
    at_lookup,     // already the question whether the file is there
    at_open,       // the file is there
    at_read,       // the file can be opened
};

// Mounts it on `folder`, where it seems to hold a file of 100,000 bytes of any name; the one that
// answers has three, which can be listed and read: a.txt, b.txt and c.txt. The process that serves
// it, a child; whoever waits for the file system waits until that is killed. 0 where the system
// lets nobody mount one. For a process with one thread: it is in the namespace from then on.
pid_t mount_silent_file_system(const std::string& folder, Silence silence);

}  // namespace test
