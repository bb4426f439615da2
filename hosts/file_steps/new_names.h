// Names for what keeps both, and for aliases whose name is taken. In bytes; never longer than
// NAME_MAX: what is too long loses the end of its stem, by whole characters of UTF-8.
#pragma once

#include <string>

namespace operations {

// "notes.txt" becomes "notes copy.txt" at the first try, then "notes copy 2.txt"; the name of a
// folder has no extension. `attempt` counts from 1.
std::string CopyName(const std::string& name, bool is_folder, unsigned attempt);

// "notes.txt" at attempt 0, then "notes.txt alias", "notes.txt alias 2".
std::string AliasName(const std::string& name, unsigned attempt);

}  // namespace operations
