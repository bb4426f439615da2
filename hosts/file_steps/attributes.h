// What a file has beside its bytes: owner, permissions, times, extended attributes, access lists.
#pragma once

#include <sys/stat.h>

#include "file_steps/work.h"

namespace operations {

// Gives the open file or folder `target` what `source` has; `what` is the source's state and `path`
// its name for messages. What the target's file system cannot keep becomes a remark; only a full
// disk is a failure. The times come last, so nothing may be written afterwards.
bool KeepAttributes(int source, int target, const struct stat& what, const std::string& path,
                    Work& work);

// The same of a symbolic link, FIFO or device, by name: owner, permissions and times.
bool KeepPlainAttributes(int folder, const char* name, const struct stat& what,
                         const std::string& path, Work& work);

// Whether the folder passes an access list on to what is made in it; and takes it away again.
bool PassesAccessListOn(int folder);
void ForgetAccessLists(int made);

}  // namespace operations
