// Starts the helper program and reads its answer. Any thread.
#pragma once

#include <string>
#include <vector>

#include "quicklook/picture.h"
#include "quicklook/reply.h"

namespace thumbnails {

enum class Ending {
    answered,   // the reply is whole
    broke_off,  // the program ended before, or wrote nonsense
    timed_out,
    no_program,
};

struct Answer {
    Ending ending = Ending::no_program;
    Reply reply = {};
    Picture picture;  // when the reply's outcome says so
};

// Runs `program` with `arguments` in a process group of its own. The only descriptor of ours that
// it gets is the one for its reply. A picture that is larger than the box counts as nonsense. By
// the time this returns, the group is killed; the background thread reaps it, since tearing down a
// cage takes milliseconds. The host's handling of SIGCHLD is neither used nor changed.
Answer run_helper(const std::string& program, const std::vector<std::string>& arguments, Box box,
                  double seconds);

// The folder of the helper programs, found beside this library; empty when they are not installed.
std::string helper_folder();

}  // namespace thumbnails
