// One thread for what nobody waits for: writing thumbnails back, reaping processes.
#pragma once

#include <sys/types.h>

#include <functional>

namespace thumbnails {

// Dropped when too much waits already, or when the process ends first.
void run_in_background(std::function<void()> work);

// For a child that was killed, also one that the kernel holds up. Asks for no other child.
void reap_in_background(pid_t process);

// Waits until all work so far is done; for processes it does not wait.
void wait_for_background();

}  // namespace thumbnails
