// The programs that have windows on the desktop, and the applications that they belong to.
// Nothing is asked of the programs themselves. Main thread.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

struct RunningProgram {
    pid_t process;
    std::string executable;   // empty when it may not be known, for another user's program
    std::string application;  // the path of its desktop entry or ".app" bundle; may be empty
    std::string identifier;   // the desktop entry's; empty for bundles
    std::string name;         // in the user's language
    bool is_regular;          // it has a normal window
};

// One program for each process, in the order of the processes' first windows.
std::vector<RunningProgram> running_programs();
