// What the user picked and could not be done, mostly files that could not be opened, and the
// messages about it. Main thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

enum class Problem {
    opening,
    memory,  // whatever was picked may have been done in part, or not at all
    folder,  // nothing was moved or copied into a folder
    item     // this file was not moved or copied; the others were
};

struct OpenProblem {
    std::string file, program;  // a path and a name; empty when unknown
    std::string reason;         // a clause, such as "it is no longer there"
    Problem kind = Problem::opening;
};

// From now on `listener` gets each problem at once. There is only one listener.
void listen_for_open_problems(std::function<void(const OpenProblem&)> listener);

// For a terminal: `cannot open "/home/me/a.qqq" with "GIMP": it is no longer there`.
std::string problem_line(const OpenProblem& problem);

// Shows the problems in one panel, and returns when the panel has been closed; an empty list shows
// nothing.
void show_open_problems(const std::vector<OpenProblem>& problems);

// Shows another failure: a title, and a reason, which is turned into a sentence.
void show_problem(const std::string& title, const std::string& reason);

// Opens a file or folder as the workspace does; its name may hold any bytes. False when it could
// not be opened; the listener gets the reason.
bool open_picked_file(const std::string& path);
