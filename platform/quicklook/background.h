// One thread for what nobody waits for: writing thumbnails back, reaping processes that the kernel
// holds up.
#pragma once

#include <functional>

namespace thumbnails {

// Dropped when too much waits already, or when the process ends first.
void run_in_background(std::function<void()> work);

// Waits until all work so far is done.
void wait_for_background();

}  // namespace thumbnails
