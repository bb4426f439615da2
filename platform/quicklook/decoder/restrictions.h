// The rights that a helper process gives up. One thread.
#pragma once

#include <stddef.h>

#include <string>
#include <vector>

namespace thumbnails {

// Limits address space and processor time, and forbids core files. The process kills itself after
// `seconds` and when its parent ends. Programs that it starts later inherit all this.
void limit_resources(size_t megabytes, unsigned processor_seconds, unsigned seconds);

// For a decoder: it keeps only the kernel calls that it needs, and only the system's own files.
// Without a cage (bubblewrap) this takes a kernel that can keep files away (Landlock). False when
// the kernel cannot do so, or refuses: do not go on then.
bool restrict_decoder(bool caged);

struct Reach {
    std::vector<std::string> readable;  // files and folders besides the system's
    std::string writable;               // one folder
    bool caged = false;
};

// For a thumbnailer program, called in the process that is about to become it. It keeps only the
// kernel calls that such programs need, cannot make a process group of its own, and reaches files
// as Reach says. False as above.
bool restrict_program(const Reach& reach);

}  // namespace thumbnails
