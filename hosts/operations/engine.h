// The embedded engine: file operations that lose nothing. docs/operations.md says what it promises.
#pragma once

#include <memory>
#include <string>

#include "file_steps/request.h"
#include "file_steps/state_folder.h"

namespace operations {

// Carries the request out on this thread and returns when it has ended. The observer's ended() is
// not sent. Beside it, what killed operations left behind is removed.
Report Perform(const Request& request, Observer& observer,
               const std::string& state_folder = StateFolder());

// The engine as a carrier, with a thread of its own; its end waits for the request at work and
// drops those that wait.
std::unique_ptr<Carrier> MakeEngine(const std::string& state_folder = StateFolder());

// Undoes the last operation of whatever process: moves back, takes what was replaced or trashed out
// of the trash, removes aliases, and puts copies in the trash if nobody changed them. Refuses as a
// whole, with nothing touched, when something has changed since. Can be repeated after it was
// interrupted. One outcome for each step; the reason of one that is done says, in one line, what
// was done for it, and is empty when nothing had to be.
Report UndoLast(Observer& observer, const std::string& state_folder = StateFolder());

// The request is handed to somebody else, whose name is `who`: until the next operation there is
// nothing that UndoLast() could undo, and it says so.
void NoteDoneElsewhere(const Request& request, const std::string& who,
                       const std::string& state_folder = StateFolder());

}  // namespace operations
