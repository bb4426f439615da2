// Names for copies that are kept beside the original name, and for aliases whose name is taken. A
// name is never longer than NAME_MAX bytes: a long one loses the end of its stem, by whole UTF-8
// characters.
#pragma once

#include <string>

namespace operations {

// "notes.txt" becomes "notes copy.txt" at the first attempt, then "notes copy 2.txt". A folder's
// name has no extension. `attempt` counts from 1.
std::string copy_name(const std::string& name, bool is_folder, unsigned attempt);

// "notes.txt" at attempt 0, then "notes.txt alias", "notes.txt alias 2".
std::string alias_name(const std::string& name, unsigned attempt);

}  // namespace operations
