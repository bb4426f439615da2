// Desktop entries by file reference. Main thread.
#pragma once

#include "desktop/desktop_entries.h"

namespace files {

struct File;

// Valid until the next call. The entry read last is kept, for the next question about the same
// reference.
const DesktopEntry& desktop_entry(const File& file);

}  // namespace files
