// The user's home folder, where all lasting files are kept.
#pragma once

#include <string>

// If HOME names no folder, sets it to the system's home folder for the user. False when the system
// knows none either; then *problem says so in one line.
bool ensure_home_folder(std::string* problem);
