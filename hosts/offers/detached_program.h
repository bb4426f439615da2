// Programs that outlive this one and need nothing of it. Main thread.
#pragma once

#include <string>
#include <vector>

// From now on this is Delvio's own program; before, it is the running one.
void set_own_program(const std::string& path);

// Starts Delvio's own program with these arguments, in a session of its own and without this
// program's streams, and returns at once. Nobody has to wait for it. False if the system starts no
// process.
bool start_own_program(const std::vector<std::string>& arguments);
