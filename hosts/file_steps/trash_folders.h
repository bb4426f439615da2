// Which folders are the trash of what stands in a folder, and what keeps one from being used.
#pragma once

#include <string>
#include <vector>

#include "file_steps/descriptor.h"

namespace operations {

struct TrashFolder {
    std::string path;
    std::string top;  // what paths are written relative to; empty for absolute ones
    bool is_home = false;
};

// In the order in which they are tried, for what is in the open folder. `path` is the folder's.
std::vector<TrashFolder> TrashFoldersOf(int folder, const std::string& path);

// An open trash.
struct OpenTrash {
    Descriptor files, info;
    std::string problem;  // in words, why it cannot be used; else empty
};

// Makes what is missing of it. Only folders of this user are used, and no links.
OpenTrash OpenTrashFolder(const TrashFolder& trash);

}  // namespace operations
