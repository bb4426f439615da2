// stat for files of this machine's own disks, which always answer. Any thread.
#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

namespace files {

enum class Local {
    found,
    missing,
    unknown,  // somewhere along the path is another kind of file system: nothing was asked of it
};

// Fills `status` when it answers found. `path` is absolute, without "." and "..";
// an empty path, which a name that is no text becomes, is missing.
Local local_stat(const std::string& path, struct stat* status);

// The folder of the innermost mount above `path` that is no local disk; empty when there is none.
// The path itself is not touched, so links along it are not followed.
std::string foreign_mount_of(const std::string& path);

// The names of the entries of this folder at which such a mount begins.
std::vector<std::string> foreign_mounts_in(const std::string& folder);

}  // namespace files
