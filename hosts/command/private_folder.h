// A private folder in the temporary folder, for one file of this process.
#pragma once

#include <string>

// Writes the bytes into a file that only the user may read; the file and its folder are removed
// when the process ends, unless it is killed. Returns the path, or an empty string on failure.
std::string write_into_private_folder(const std::string& bytes);

// Removes the folders that killed runs left behind. Does not wait, and leaves alone folders that a
// run still uses or that are not private folders of this user.
void remove_left_private_folders();
