// The user's home folder, where everything that lasts is kept.
#pragma once

#include <string>

// Sets HOME to what the system knows where it names no folder. False when the system knows none
// either; then *problem says so in one line.
bool EnsureHomeFolder(std::string* problem);
