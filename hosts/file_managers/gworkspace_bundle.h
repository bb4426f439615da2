// Delvio's bundle in the list of bundles that GWorkspace loads. Main thread.
#pragma once

#include <string>

#include "file_managers/entry_file.h"

// Puts the bundle into the list or takes it out, and says so. Returns the exit status.
int change_gworkspace_bundles(bool is_removal);

EntryState state_of_gworkspace(std::string* problem);
