// Delvio's entries in the menus of a file manager, as a whole. Main thread.
#pragma once

#include <string>
#include <vector>

#include "file_managers/managers.h"

struct EntryChange {
    std::vector<std::string> paths;  // of the files that were changed; none if nothing was to do
    std::string problem;             // why it cannot be done
};

// How file managers are to call this Delvio. False, with the reason, when it cannot be said.
bool find_invocation(Invocation* invocation, std::string* problem);

// The state of several files that belong together is that of the one that lacks most.
EntryState state_of(const FileManager& manager, const Invocation& invocation, std::string* problem);

// Before the first file is changed, every file is one that can be changed.
EntryChange put_in(const FileManager& manager, const Invocation& invocation);
EntryChange take_out(const FileManager& manager, const Invocation& invocation);
