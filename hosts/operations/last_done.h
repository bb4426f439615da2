// What the last operation did, for a menu that offers to undo it. Any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "file_steps/request.h"
#include "file_steps/state_folder.h"
#include "operations/undo_record.h"

namespace operations {

struct LastDone {
    Kind kind = Kind::Move;
    std::string name;  // of the first file, in the bytes of the file system
    size_t count = 0;  // of files; 0 if they are too many to count here
};

// What the steps of an operation did that are not undone. Empty if there are none.
std::optional<LastDone> done_by(const std::vector<Step>& steps);

// Empty when there is nothing to undo, also while the operation is under way. Whether the undo will
// succeed is found out only by undo_last().
std::optional<LastDone> last_done(const std::string& state_folder = default_state_folder());

}  // namespace operations
