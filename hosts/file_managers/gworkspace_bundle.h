// Delvio's bundle in the list of bundles that GWorkspace loads. Main thread.
#pragma once

#include <string>

#include "file_managers/entry_file.h"

struct BundleChange {
    std::string path;          // of the bundle
    std::string place;         // which list it is about, in the user's language
    bool has_changed = false;  // otherwise the list was so before
    std::string problem;       // why it cannot be done; nothing was changed
};

// Puts the bundle into the list or takes it out.
BundleChange change_gworkspace_bundles(bool is_removal);

EntryState state_of_gworkspace(std::string* problem);
