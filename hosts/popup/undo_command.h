// delvio undo.
#pragma once

#include <string>
#include <vector>

#include "file_steps/request.h"

// What an undo has done, and what prevented it: one line for each file, or for the first ones of
// many.
struct UndoLines {
    std::vector<std::string> done, problems;
};
UndoLines lines_of(const operations::Report& report);

// Undoes the last operation of the engine. Returns the exit status; prints what prevents the undo
// on standard error, one line each.
int run_undo_command();
