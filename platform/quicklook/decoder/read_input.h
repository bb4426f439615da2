// Reading the file that a decoder was given. One thread.
#pragma once

#include <stddef.h>

#include <string>

namespace thumbnails {

// The first bytes of the file, at most `limit`; fewer where the file ends or cannot be read.
std::string read_start(size_t limit);

// An answer for a file that is not this decoder's business. `type` says what its content looks
// like; empty says nothing.
void write_unsupported(const std::string& type);

}  // namespace thumbnails
