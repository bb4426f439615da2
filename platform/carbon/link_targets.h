// Where symbolic links lead.
#pragma once

#include <string>

namespace files {

struct File;

// The path without links and dots; empty, with errno set, when the path leads nowhere.
std::string real_path(const std::string& path);

// What one link names, as an absolute path whose last component is a name; empty, with errno set,
// when the link is gone. The target need not exist.
std::string link_target(const File& file);

}  // namespace files
