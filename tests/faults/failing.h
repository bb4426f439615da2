// What the parts of the library of failing calls share.
#pragma once

#include "faults/control.h"

// A replacement of a function of the C library, and who called it.
#define EXPORT extern "C" __attribute__((visibility("default")))
#define CALLER __builtin_return_address(0)

namespace faults {

// Null in programs that are not ours.
extern Control* control;
// What the library itself calls does not count.
extern thread_local bool is_counting;

// Counts a call, and says whether it is the one that fails.
bool fails(Family family, int error, const char* name, const void* caller);

}  // namespace faults
