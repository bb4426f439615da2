// Waiting for what is to happen. The limit is a guard, not a measure of speed.
#pragma once

#include <unistd.h>

#include <functional>

namespace test {

inline bool wait_for(const std::function<bool()>& happened) {
    constexpr int turns = 3000, microseconds_a_turn = 20000;
    for (int turn = 0; turn < turns; turn++) {
        if (happened()) return true;
        usleep(microseconds_a_turn);
    }
    return happened();
}

}  // namespace test
