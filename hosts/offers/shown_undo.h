// Undoing for a person: with a window if it takes long, and a message at the end. Main thread, in a
// program with an application object.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "file_steps/request.h"
#include "offers/undo_lines.h"

struct ShownUndo {
    std::string operation;  // its name (see Report); empty for the last one, whichever it is
    // Wraps the windows' observer; may be empty.
    std::function<std::shared_ptr<operations::Observer>(std::shared_ptr<operations::Observer>)>
        wrapped;
    // Called at the end, from the run loop: whether the user is to be told. Empty for yes.
    std::function<bool(const UndoLines&)> ended;
};

// Returns at once. The message comes by the desktop, or in a panel if the desktop shows none, or if
// the undo was not possible.
void undo_with_windows(const ShownUndo& undo);
