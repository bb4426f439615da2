// Files that a caller of the Mac's File or Alias Manager named and that could not be reached, for a
// host that tells its user. Not a Mac interface. Main thread.
#pragma once

#include <string>
#include <vector>

struct UnreachedFile {
    std::string path;
    int error;  // of errno
};

// Those since the last call, each once, and only the first few.
std::vector<UnreachedFile> take_unreached_files();
