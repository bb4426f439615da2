// See host/unreached_files.h.
#pragma once

#include <string>

namespace files {

void note_unreached(const std::string& path, int error);

}  // namespace files
