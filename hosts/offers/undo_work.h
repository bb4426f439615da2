// An undo on a thread of its own. C++ alone: an exception of C++ that meets Objective-C++ ends the
// program.
#pragma once

#include <memory>
#include <string>
#include <thread>

#include "file_steps/request.h"

struct UndoWork {
    operations::Report report;  // valid once the observer has heard of the end
    std::thread thread;         // to join then; there is none when none could be started
};

// Undoes the operation of this name; empty stands for the last one. The end of the observer is
// called on the thread, or at once, with an empty report. Without a thread, and when memory ends,
// the work's report is a refusal.
void start_undo(UndoWork* work, std::shared_ptr<operations::Observer> observer,
                const std::string& operation);
