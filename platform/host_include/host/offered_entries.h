// The desktop's installed programs that a host can offer to open files with. Main thread.
#pragma once

#include <string>

// Whether menus of the user's desktop show the `.desktop` file, and its program is installed and
// takes files: Hidden, NoDisplay, OnlyShowIn, NotShowIn, TryExec and Exec count. *name receives the
// name in the user's language. False for a broken file, and for one that is no plain file of at
// most 256 KiB.
bool is_offered_entry(const std::string& path, std::string* name);
