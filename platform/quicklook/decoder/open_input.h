// Opens the file whose thumbnail is wanted. One thread.
#pragma once

#include <string>

namespace thumbnails {

// Opens a plain file for reading; -1 for anything else, which is never opened, not even for a
// moment: so nothing waits for a pipe's other end, and no device notices.
int open_plain_file(const std::string& path);

// Makes this descriptor file_descriptor, also for the programs that this process becomes.
bool hand_over(int file);

}  // namespace thumbnails
