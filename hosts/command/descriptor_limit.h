// How many files this process may have open.
#pragma once

#include <string>

// Raises the limit where the system allows it. Returns a sentence when it is too low to work with,
// else an empty string.
std::string descriptor_problem();
