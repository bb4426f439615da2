// The embedded engine: file operations that lose nothing. docs/operations.md says what it promises.
#pragma once

#include <memory>
#include <string>

#include "file_steps/request.h"
#include "file_steps/state_folder.h"

namespace operations {

// Carries the request out on this thread and returns when it has ended. Does not call the
// observer's ended(). Also removes the files that killed operations left behind.
Report perform_request(const Request& request, Observer& observer,
                       const std::string& state_folder = default_state_folder());

// The engine as a carrier with a thread of its own. Its destructor waits for the request at work
// and drops the waiting ones.
std::unique_ptr<Carrier> make_engine(const std::string& state_folder = default_state_folder());

// Undoes the last operation, of whichever process: moves files back, takes replaced or trashed
// files out of the trash, removes aliases, and puts copies that nobody has changed into the trash.
// Refuses the whole undo, with nothing touched, when something has changed since. An interrupted
// undo can be repeated. The report has one outcome for each step; the reason of a done step says,
// in one line, what was done, and is empty when nothing had to be done.
Report undo_last(Observer& observer, const std::string& state_folder = default_state_folder());
// Does so if the last operation is the one of this name (see Report), and else refuses, and says
// what came after it.
Report undo_operation(const std::string& operation, Observer& observer,
                      const std::string& state_folder = default_state_folder());

// Notes that the request was handed to another program, whose name is `who`. Until the next
// operation undo_last() has nothing to undo, and says so.
void note_done_elsewhere(const Request& request, const std::string& who,
                         const std::string& state_folder = default_state_folder());

}  // namespace operations
