// stat for paths that may have stopped answering. Any thread.
#pragma once

#include <stddef.h>
#include <sys/stat.h>

#include <optional>
#include <string>

namespace files {

// A function that looks at a file as stat does.
using Look = int (*)(const char* path, struct stat* status);

// Looks at a file. The result is empty when the file is missing, or when no answer comes within
// `seconds`. Local disks are asked directly, other file systems on a thread of their own, by
// `look`. The result is empty at once when a question to the same file system has waited that long
// already, or when too many questions anywhere have. So few threads wait, and a caller that asks
// repeatedly waits only once.
std::optional<struct stat> patient_stat(const std::string& path, double seconds,
                                        Look look = ::stat);

// The same, and whether the file system has answered at all.
enum class Answer { found, missing, silent };
Answer ask_patiently(const std::string& path, double seconds, struct stat* status,
                     Look look = ::stat);

// How many questions have no answer yet.
size_t open_questions();

}  // namespace files
