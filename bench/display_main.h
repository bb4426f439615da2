// The main function of a measurement that needs an X server.
#pragma once

#include <functional>

struct _XDisplay;

namespace bench {

// Measures on the server that DISPLAY names. Returns the program's exit status: that of
// bench::status(), or 1 with a message when there is no server or the measurement throws.
int run_on_display(const std::function<void(_XDisplay*)>& measure);

}  // namespace bench
