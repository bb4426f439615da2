// Runs one turn of a run loop, for code without one.
#pragma once

#include <functional>

namespace test {

// Frees at once the objects that the run loop would free after the action.
void in_one_turn(const std::function<void()>& action);

}  // namespace test
