// Replaces the platform's scandir to record the paths of the folders that were read, with their
// slashes.
#pragma once

#include <string>
#include <vector>

namespace test {

// Since the last time.
std::vector<std::string> take_scanned_folders();

}  // namespace test
