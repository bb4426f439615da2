// The engine as a program that is killed at a given moment.
#pragma once

#include <string>
#include <vector>

namespace test {

struct Run {
    bool was_killed = false;
    int status = 0;  // exit status of a program that was not killed
    double seconds = 0;
    std::string complaints;  // standard error
};

// Runs `operate` with the words, and kills it after this many seconds if it is still running. With
// 0 or less it is not killed.
Run run_operate(const std::vector<std::string>& words, double seconds);

// The number of kills in a test: this many, or the value of DELVIO_KILLS in the environment.
int kills_to_make(int usual);

}  // namespace test
