// What a file has besides its bytes: owner, permissions, times, extended attributes, access lists.
#pragma once

#include <sys/stat.h>

#include "file_steps/work.h"

namespace operations {

// Gives the open file or folder `target` the attributes of `source`; `what` is the source's state
// and `path` its name for messages. An attribute that the target's file system cannot keep becomes
// a remark; only a full disk is a failure. The times are set last, so the caller must not write to
// the target afterwards.
bool keep_attributes(int source, int target, const struct stat& what, const std::string& path,
                     Work& work);

// Does the same for a symbolic link, FIFO or device, by name: owner, permissions and times.
bool keep_plain_attributes(int folder, const char* name, const struct stat& what,
                           const std::string& path, Work& work);

// passes_access_list_on() tells whether new entries of the folder inherit an access list from it.
// forget_access_lists() removes the access lists of `made`.
bool passes_access_list_on(int folder);
void forget_access_lists(int made);

}  // namespace operations
