// Paths as texts; no file is looked at. Any thread.
#pragma once

#include <string>

namespace operations {

// A path as requests have it: "/a" for "/a/" and for "/a//", "/" for "//".
inline std::string without_slash(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

}  // namespace operations
