// What a helper process takes away from itself. One thread.
#pragma once

#include <stddef.h>

#include <string>
#include <vector>

namespace thumbnails {

// Address space, processor time, no core file; kills itself after `seconds`, and when its parent
// ends. Inherited by what is started later.
void limit_resources(size_t megabytes, unsigned processor_seconds, unsigned seconds);

// For a decoder: only the calls that it needs, and of files only the system's own. What runs in no
// cage (bubblewrap) takes a kernel that can keep files away (Landlock). False when the kernel
// cannot, or refuses: do not go on then.
bool restrict_decoder(bool caged);

struct Reach {
    std::vector<std::string> readable;  // files and folders besides the system's
    std::string writable;               // one folder
    bool caged = false;
};

// For a thumbnailer program, in the process that is about to become it: only the calls that such
// programs need, no process group of its own; files as Reach says. False as above.
bool restrict_program(const Reach& reach);

}  // namespace thumbnails
