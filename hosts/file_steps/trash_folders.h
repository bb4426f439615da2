// Which trash folders serve the files of a folder, and why one cannot be used.
#pragma once

#include <string>
#include <vector>

#include "file_steps/descriptor.h"

namespace operations {

struct TrashFolder {
    std::string path;
    std::string top;       // what paths are written relative to; empty for absolute ones
    bool is_home = false;  // the home's, and known to be on the volume
};

// The trash folders for the entries of the open folder, the first choice first. `path` is the
// folder's path.
std::vector<TrashFolder> trash_folders_of(int folder, const std::string& path);

// An open trash.
struct OpenTrash {
    Descriptor files, info;
    std::string problem;  // a sentence: why it cannot be used; else empty
};

// Opens the trash and makes its missing parts. Uses only this user's folders, and follows no links.
OpenTrash open_trash_folder(const TrashFolder& trash);

}  // namespace operations
