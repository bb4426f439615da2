// Starts the helper program and reads its answer. Any thread.
#pragma once

#include <string>
#include <vector>

#include "quicklook/helper_reply.h"

namespace thumbnails {

// Runs `program` with `arguments` in a process group of its own. The only descriptor of ours that
// it gets is the one for its reply. A picture that is larger than the box counts as nonsense. By
// the time this returns, the group is killed; the background thread reaps it, since tearing down a
// cage takes milliseconds. The host's handling of SIGCHLD is neither used nor changed.
Answer run_helper(const std::string& program, const std::vector<std::string>& arguments, Box box,
                  double seconds);

// The folder of the helper programs, found beside this library; empty when they are not installed.
std::string helper_folder();

}  // namespace thumbnails
