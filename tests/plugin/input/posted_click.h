// Replaces Core Graphics' remote operation, to record how a click is posted.
#pragma once

#include <string>

namespace test {

// The calls since the last time, as words.
std::string take_posting_calls();

}  // namespace test
