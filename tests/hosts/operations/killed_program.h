// The engine as a program that is killed at a given moment.
#pragma once

#include <string>
#include <vector>

namespace test {

struct Run {
    bool was_killed = false;
    int status = 0;  // of one that ended by itself
    double seconds = 0;
    std::string complaints;  // standard error
};

// Runs `operate` with the words; it is killed after so many seconds, if it has not ended by then.
// 0 or less lets it end.
Run run_operate(const std::vector<std::string>& words, double seconds);

// How many kills a test makes: so many, or what the environment's DELVIO_KILLS says.
int kills_to_make(int usual);

}  // namespace test
