// One turn of a run loop, for what has none.
#pragma once

#include <functional>

namespace test {

// Frees at once what the run loop would free after the action.
void in_one_turn(const std::function<void()>& action);

}  // namespace test
