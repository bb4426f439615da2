// A process that is killed on its way to the trash leaves a note there that says where the file
// came from, but no file. This removes such a note. Any thread.
#pragma once

#include <string>

namespace operations {

// Removes the note, if the last operation left one, in a process of its own that nobody waits for.
// Returns at once; on this thread, uses only the disk that holds the state.
void begin_to_remove_left_trash_info(const std::string& state_folder);

// Does the same on this thread, and waits for the disk.
void remove_left_trash_info(const std::string& state_folder);

}  // namespace operations
