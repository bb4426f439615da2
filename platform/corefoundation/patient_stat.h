// stat for paths that may have stopped answering. Any thread.
#pragma once

#include <stddef.h>
#include <sys/stat.h>

#include <optional>
#include <string>

namespace files {

// How a file is looked at: as stat does.
using look_t = int (*)(const char* path, struct stat* status);

// Nothing when the file is missing, or when no answer comes in `seconds`. Local disks are asked
// directly, others in a thread of their own. Where a question to the same file system has had no
// answer for that long already, or too many have had none anywhere, the answer is nothing at once:
// so few threads wait, and who asks again and again waits once. `look` is how others are asked.
std::optional<struct stat> patient_stat(const std::string& path, double seconds,
                                        look_t look = ::stat);

// How many questions have no answer yet.
size_t open_questions();

}  // namespace files
