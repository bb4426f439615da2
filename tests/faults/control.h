// What a test and the library of failing calls tell each other, in a file that both have mapped.
#pragma once

#include <atomic>

namespace faults {

// A family of calls, and the error with which the library lets one of them fail.
enum Family {
    listing,     // opendir, readdir, getdents64, scandir
    status,      // stat, statx and their like
    attributes,  // extended attributes
    opening,     // open, fopen
    reading,     // read, pread
    writing,     // write, pwrite, copy_file_range
    syncing,     // fsync, syncfs
    renaming,    // rename, link, symlink
    removing,    // unlink, rmdir, mkdir
    memory,      // malloc and its like, called by our own code
    objects,     // new, called by our own code, directly or through the C++ library
    handles,     // socket, pipe, eventfd, memfd_create
    threads,     // pthread_create
    processes,   // fork, posix_spawn
    display,     // the connection to the X server, and what is sent over it
    bus,         // the connection to the session bus, and what is sent over it
    families
};

inline constexpr const char* family_names[families] = {
    "listing",  "status", "attributes", "opening", "reading", "writing",   "syncing", "renaming",
    "removing", "memory", "objects",    "handles", "threads", "processes", "display", "bus"};

struct Control {
    std::atomic<int> family;  // whose calls fail; `families` for none
    std::atomic<int> only;    // the process whose calls count; 0 for all, or `first_process`
    std::atomic<long> at;     // the number of the call that fails
    std::atomic<long> times;  // how many fail from there on, one after the other
    std::atomic<long> calls[families];  // how many there were
    std::atomic<long> failed;           // how many were let fail
    std::atomic<int> first;             // the process that the test started
    char files_at_end[8192];            // what it had open when it ended, a line each
    char name[64];                      // the call that failed
    char module[192];                   // the program or library that made it
};

// Stands for the process that the test starts.
inline constexpr int first_process = -1;

// The environment variable that names the file.
inline constexpr char variable[] = "DELVIO_TEST_FAULTS";

}  // namespace faults
