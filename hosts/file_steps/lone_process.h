// Work in a process of its own, which nobody waits for. Any thread.
#pragma once

#include <functional>

namespace operations {

// Returns at once. The work ends with its process after ten minutes: a disk may never answer. It
// must not rely on anything that other threads of this process may hold.
void RunAlone(const std::function<void()>& work);

}  // namespace operations
