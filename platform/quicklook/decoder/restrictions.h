// What a helper process takes away from itself. One thread.
#pragma once

#include <stddef.h>

#include <string>
#include <vector>

namespace thumbnails {

// Address space, processor time, no core file; kills itself after `seconds`, and when its parent
// ends. Inherited by what is started later.
void limit_resources(size_t megabytes, unsigned processor_seconds, unsigned seconds);

// For a decoder: no network, no other programs, no writing; reading only of the system's own
// folders, where the kernel can see to that. False when the kernel refuses: do not go on then.
bool restrict_decoder();

struct Reach {
    std::vector<std::string> readable;  // files and folders besides the system's
    std::string writable;               // one folder
};

// For a thumbnailer program, in the process that is about to become it: no network, no process
// group of its own; files as Reach says, where the kernel can see to that.
bool restrict_program(const Reach& reach);

}  // namespace thumbnails
