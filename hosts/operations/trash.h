// The desktop's trash, laid out as freedesktop.org describes it, so that every file manager can
// restore from it: the home's for what stands on its volume, else one at the top of the volume.
// Nothing is ever copied or deleted: what has no trash stays where it is. Any thread.
#pragma once

#include <functional>
#include <string>

namespace operations {

// Where something is in the trash; absolute paths.
struct Trashed {
    std::string file;  // the thing itself
    std::string info;  // what tells where it came from
};

// Moves what stands at the absolute path to the trash. `before` is sent once it is known where it
// goes and before it goes; false keeps it. False with the reason, in one line, in *problem.
bool PutInTrash(const std::string& path, const std::function<bool(const Trashed&)>& before,
                Trashed* trashed, std::string* problem);

// Moves it back to the path, which must be free. False with errno.
bool TakeFromTrash(const Trashed& trashed, const std::string& path);

}  // namespace operations
