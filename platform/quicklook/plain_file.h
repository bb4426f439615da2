// Reading small files of the desktop's bookkeeping. Any thread.
#pragma once

#include <stddef.h>

#include <optional>
#include <string>

namespace thumbnails {

// The whole content of a plain file of at most `limit` bytes; no value for anything else. Only
// plain files are ever opened.
std::optional<std::string> read_plain_file(const std::string& path, size_t limit);

}  // namespace thumbnails
