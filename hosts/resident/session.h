// Which calls share a host: those of one user, display and session, and of one locale. Any thread.
#pragma once

#include <string>
#include <vector>

namespace resident {

// The variables that libraries of a host read once, such as DISPLAY, HOME and LANG, in order. Two
// calls with other values get two hosts; all other variables are each call's own.
std::vector<std::string> fixed_variables(const std::vector<std::string>& environment);

// Which files this process sees under their names: the mount namespace and the root folder. A
// program in a container or behind chroot may share the run-time folder, but sees other files.
// Empty when the system does not say.
std::string seen_files();

// The name of the host of this environment and program, for callers that see these files: letters
// and digits, the same at each call.
std::string host_name(const std::vector<std::string>& environment, const std::string& program,
                      const std::string& files = seen_files());

std::vector<std::string> own_environment();

}  // namespace resident
