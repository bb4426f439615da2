// Waiting for what is to happen.
#pragma once

#include <unistd.h>

#include <chrono>
#include <functional>

namespace test {

// False when it has not happened after two minutes, which guard against a hang and measure nothing.
inline bool wait_for(const std::function<bool()>& happened) {
    constexpr int microseconds_a_turn = 20000;
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    while (!happened()) {
        if (std::chrono::steady_clock::now() > end) return happened();
        usleep(microseconds_a_turn);
    }
    return true;
}

}  // namespace test
