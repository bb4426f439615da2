// Starts the resident host. Any thread.
#pragma once

#include <string>

#include "file_steps/descriptor.h"

namespace resident {

using operations::Descriptor;

// The host's own argument, which is not for users.
inline constexpr const char* host_argument = "--resident-host";

// The argument of the command that has a host own its name on the session bus; not for users,
// either.
inline constexpr const char* bus_argument = "--own-bus-name";

// The descriptor at which a host finds the socket that it serves.
inline constexpr int listening_descriptor = 3;

// Starts the program as the host of this listening socket, in a session of its own, so that it
// outlives the caller and its terminal. Its name is for its log. False when it cannot be started.
bool start_host(const std::string& program, const std::string& name, const Descriptor& listener);

}  // namespace resident
