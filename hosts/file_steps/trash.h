// The desktop's trash, laid out as freedesktop.org describes it, so that every file manager can
// restore from it: the home's for what stands on its volume, else one at the top of the volume.
// Nothing is ever copied or deleted: what has no trash stays where it is. Any thread.
#pragma once

#include <sys/stat.h>

#include <functional>
#include <string>

namespace operations {

// Where something is in the trash; absolute paths.
struct Trashed {
    std::string file;  // the thing itself
    std::string info;  // what tells where it came from
};

// Something in an open folder, and what it was when it was looked at.
struct Thing {
    int folder;
    std::string name;
    struct stat what;
};

// Moves the thing to the trash, and never another that got its name since. `before` is sent once
// it is known where it goes and before it goes, again if that name is taken meanwhile; false keeps
// it. False with the reason, in one line, in *problem.
bool PutInTrash(const Thing& thing, const std::function<bool(const Trashed&)>& before,
                Trashed* trashed, std::string* problem);

// Why what is in the folder cannot go to the trash; empty if it can. Makes the trash.
std::string WhyNoTrash(int folder);

// Moves it back into the folder under the name, which must be free. False with errno.
bool TakeFromTrash(const Trashed& trashed, int folder, const std::string& name);

}  // namespace operations
