// Notices picks that had no effect, or only a part of it, where nobody else tells of that. Main
// thread.
#pragma once

#include <functional>

#include "finderkit/open_problems.h"

// From the first call on, `tell` gets each problem at once. Later calls do nothing.
void watch_picks(std::function<void(const OpenProblem&)> tell);
