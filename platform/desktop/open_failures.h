// Why files cannot be opened, and how the host is told. Main thread.
#pragma once

#include <string>

namespace files {

// Why a path cannot be given to a program. Empty when it can: it is a file, a folder, or a link to
// one.
std::string why_not_openable(const std::string& path);

// Tells the host's listener.
void tell_open_failure(const std::string& file, const std::string& program,
                       const std::string& reason);

void count_opening();

}  // namespace files
