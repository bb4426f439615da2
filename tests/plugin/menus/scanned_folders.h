// In front of the platform's scandir: the paths of the folders that have been read, with their
// slashes.
#pragma once

#include <string>
#include <vector>

namespace test {

// Since the last time.
std::vector<std::string> take_scanned_folders();

}  // namespace test
