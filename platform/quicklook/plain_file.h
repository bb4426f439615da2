// Reading small files of the desktop's bookkeeping. Any thread.
#pragma once

#include <stddef.h>

#include <optional>
#include <string>

namespace thumbnails {

// The whole content of a plain file of at most `limit` bytes; nothing for anything else, and
// nothing is opened that is not a plain file.
std::optional<std::string> read_plain_file(const std::string& path, size_t limit);

}  // namespace thumbnails
