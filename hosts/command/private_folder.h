// A folder in the temporary folder that is this process's alone, for one file of it.
#pragma once

#include <string>

// Writes the bytes into a file that only the user may read; both go when the process ends in order.
// The path, or empty when it cannot be.
std::string WriteIntoPrivateFolder(const std::string& bytes);

// Removes what runs left that were killed. It waits for nothing, and leaves alone what a run still
// uses and what is not ours.
void RemoveLeftPrivateFolders();
