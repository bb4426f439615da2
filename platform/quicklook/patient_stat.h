// stat for paths that may have stopped answering. Any thread.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

namespace thumbnails {

// Nothing when the file is missing, or when no answer comes in `seconds`. Local disks are asked
// directly, others in a thread of their own. While a question about a
// folder's file is unanswered, the next ones about that folder get nothing at once, so that at
// most one thread waits for each folder.
std::optional<struct stat> patient_stat(const std::string& path, double seconds);

}  // namespace thumbnails
