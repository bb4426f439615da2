// Which programs may have taken GNUstep's lock of the user's defaults.
#pragma once

#include <time.h>

// Whether a program of this user that uses GNUstep without Delvio, and has the same home, has been
// running since before this moment. Reads /proc, which takes milliseconds.
bool may_be_held_by_another(const struct timespec& since);
