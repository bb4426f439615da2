// What the user picked and could not be opened, in words. Main thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

struct OpenProblem {
    std::string file, program;  // a path and a name; empty where it is not known
    std::string reason;         // a clause, "it is no longer there"
};

// From now on each is given to `listener`, at once. There is one listener.
void ListenForOpenProblems(std::function<void(const OpenProblem&)> listener);

// For a terminal: `cannot open "/home/me/a.qqq" with "GIMP": it is no longer there`.
std::string LineOf(const OpenProblem& problem);

// Shows them in one panel, and returns when that has been closed; none shows nothing.
void ShowOpenProblems(const std::vector<OpenProblem>& problems);

// Shows what failed otherwise: a title, and a reason that is made a sentence.
void ShowProblem(const std::string& title, const std::string& reason);

// Opens a file or folder as the workspace does, whatever bytes its name has. False when it could
// not; the listener knows why.
bool OpenFile(const std::string& path);
