// Where the full program is. Any thread.
#pragma once

#include <string>

namespace resident {

// The full program, seen from the folder of the running client; empty when it is not there.
std::string full_program();

}  // namespace resident
