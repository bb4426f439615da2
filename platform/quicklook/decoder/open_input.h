// Opening the file whose thumbnail is wanted. One thread.
#pragma once

#include <string>

namespace thumbnails {

// Opens a plain file for reading; -1 for anything else. What is no plain file is never opened, not
// even for a moment, so that nothing waits for a pipe's other end and no device notices.
int open_plain_file(const std::string& path);

// Makes this descriptor file_descriptor, for the programs that follow too.
bool hand_over(int file);

}  // namespace thumbnails
