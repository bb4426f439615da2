// Work in a process of its own, which nobody waits for. Callable from any thread.
#pragma once

#include <functional>

namespace operations {

// Returns at once; the process then holds no file and no lock of the caller's. It is ended after
// ten minutes, because a disk may never answer. The work must not use anything that other threads
// of this process may hold, such as mutexes.
void run_alone(const std::function<void()>& work);

}  // namespace operations
