// What an archive holds, as a tree. One thread.
#pragma once

#include <stdint.h>

#include <map>
#include <memory>
#include <string>

namespace thumbnails {

struct ArchiveFolder;

struct ArchiveEntry {
    int64_t size = -1;                      // of a file; negative when the archive does not say
    std::unique_ptr<ArchiveFolder> folder;  // null for a file
};

struct ArchiveFolder {
    std::map<std::string, ArchiveEntry> entries;  // by name
};

struct ArchiveContents {
    ArchiveFolder root;
    size_t entries = 0;     // read so far
    bool is_whole = false;  // else there is more than was read
};

// Reads the list of the archive of file_descriptor, and nothing that the archive's files contain
// except where the list cannot be found without. Stops after a time and a number of entries.
ArchiveContents read_archive();

}  // namespace thumbnails
