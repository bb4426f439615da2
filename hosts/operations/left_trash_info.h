// What is killed on its way to the trash leaves the note there that says where it came from,
// without a file that it is for. Any thread.
#pragma once

#include <string>

namespace operations {

// Removes that note, if the last operation left one, in a process of its own that nobody waits for.
// Returns at once; asks no disk but the one that holds the state.
void BeginToRemoveLeftTrashInfo(const std::string& state_folder);

// The same here, which waits for the disk.
void RemoveLeftTrashInfo(const std::string& state_folder);

}  // namespace operations
