// The files that the user named.
#pragma once

#include <string>
#include <vector>

// Makes the names absolute, without following the last component's link. False when one of them
// does not exist or cannot be reached; then *problem says which, in one line.
bool ResolveFiles(std::vector<std::string>* files, std::string* problem);
