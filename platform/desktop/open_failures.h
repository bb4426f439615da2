// Why files cannot be opened, and telling the host so. Main thread.
#pragma once

#include <string>

namespace files {

// Empty for what can be given to a program: a file, a folder, or a link to one.
std::string why_not_openable(const std::string& path);

// To the host's listener.
void tell_open_failure(const std::string& file, const std::string& program,
                       const std::string& reason);

void count_opening();

}  // namespace files
