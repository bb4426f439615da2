// The files that the user named on the command line.
#pragma once

#include <string>
#include <vector>

// Makes the names absolute, without following a link in the last component. False when a file does
// not exist or cannot be reached; then *problem says which, in one line.
bool resolve_files(std::vector<std::string>* files, std::string* problem);
