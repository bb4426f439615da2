// One thread for work that nobody waits for: writing thumbnails to the cache, reaping processes.
#pragma once

#include <sys/types.h>

#include <functional>

namespace thumbnails {

// Runs the work later. It is dropped when too much work waits already, or when the process ends
// first.
void run_in_background(std::function<void()> work);

// Reaps a child that was killed, even one that the kernel holds up. Waits for no other child.
void reap_in_background(pid_t process);

// Waits until all work given so far is done, but not for processes.
void wait_for_background();

}  // namespace thumbnails
