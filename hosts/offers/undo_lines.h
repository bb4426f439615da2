// What an undo has done, in words. Any thread.
#pragma once

#include <string>
#include <vector>

#include "file_steps/request.h"

// What an undo has done, and what prevented it: one line for each file.
struct UndoLines {
    std::vector<std::string> done, problems;
};
UndoLines lines_of(const operations::Report& report);

// At most this many lines; the last one says how many more there are.
std::vector<std::string> first_lines(std::vector<std::string> lines, size_t most);
// As many lines as one can read in a message, as one text.
std::string message_of(const std::vector<std::string>& lines);
