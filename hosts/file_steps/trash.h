// The desktop's trash, laid out as freedesktop.org describes it, so that every file manager can
// restore from it: the home's trash for files on the home's volume, else a trash at the top of the
// file's volume. Nothing is ever copied or deleted: a file without a trash stays where it is. Any
// thread.
#pragma once

#include <sys/stat.h>

#include <functional>
#include <string>

namespace operations {

// Where a file is in the trash; absolute paths.
struct Trashed {
    std::string file;  // the file itself
    std::string info;  // the note that says where it came from
};

// Whether the two belong together as the trash names them. A record of a place that was damaged may
// name any file, and undoing removes the note.
bool is_place_in_trash(const Trashed& place);

// An entry of an open folder, and its state when it was looked at.
struct Thing {
    int folder;
    std::string name;
    struct stat what;
};

// Moves the thing to the trash, and never another file that has taken its name since. `before` is
// called with the place in the trash before the move, and again if that name is taken in between;
// false cancels the move. False with the reason, in one line, in *problem.
bool move_into_trash(const Thing& thing, const std::function<bool(const Trashed&)>& before,
                     Trashed* trashed, std::string* problem);

// Why files in the folder cannot go to the trash; empty if they can. Makes the trash.
std::string why_no_trash(int folder);

// Moves a file from the trash into the folder under the name, which must be free. False with errno.
bool take_from_trash(const Trashed& trashed, int folder, const std::string& name);

}  // namespace operations
