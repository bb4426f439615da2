#include "quicklook/background.h"

#include <errno.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace thumbnails {

namespace {

const size_t most_waiting = 16;
// A killed process is gone in milliseconds, unless it is in a call that cannot be interrupted.
const auto first_pause = std::chrono::milliseconds(2),
           longest_pause = std::chrono::milliseconds(500);

struct Background {
    std::mutex lock;
    std::condition_variable changed;
    std::deque<std::function<void()>> work;
    std::vector<pid_t> killed;
    std::chrono::milliseconds pause = first_pause;
    bool is_running = false, is_busy = false;
};

// Never destroyed: the thread lives until the process ends.
Background& background() {
    static Background& background = *new Background;
    return background;
}

bool is_gone(pid_t process) {
    const pid_t result = waitpid(process, nullptr, WNOHANG);
    // When the host reaps its children by other means, the kernel no longer knows our child in the
    // end.
    return result == process || (result < 0 && errno != EINTR);
}

// Reaps processes until there is work.
void reap(Background& self, std::unique_lock<std::mutex>& guard) {
    while (self.work.empty()) {
        self.killed.erase(std::remove_if(self.killed.begin(), self.killed.end(), is_gone),
                          self.killed.end());
        if (self.killed.empty()) {
            self.changed.wait(guard);
        } else {
            self.changed.wait_for(guard, self.pause);
            self.pause = std::min(self.pause * 2, longest_pause);
        }
    }
}

void keep_house() {
    Background& self = background();
    std::unique_lock guard(self.lock);
    for (;;) {
        reap(self, guard);
        const std::function<void()> next = std::move(self.work.front());
        self.work.pop_front();
        self.is_busy = true;
        guard.unlock();
        try {
            next();
        } catch (const std::exception&) {
            // When memory is short, the work is not done.
        }
        guard.lock();
        self.is_busy = false;
        self.changed.notify_all();
    }
}

// With the lock held.
bool start(Background& self) {
    if (self.is_running) return true;
    try {
        std::thread(keep_house).detach();
    } catch (const std::system_error&) {
        return false;
    }
    self.is_running = true;
    return true;
}

}  // namespace

void run_in_background(std::function<void()> work) {
    Background& self = background();
    const std::lock_guard guard(self.lock);
    if (self.work.size() >= most_waiting) return;
    if (!start(self)) return;
    self.work.push_back(std::move(work));
    self.changed.notify_all();
}

void reap_in_background(pid_t process) {
    Background& self = background();
    std::unique_lock guard(self.lock);
    if (!start(self)) {
        guard.unlock();
        waitpid(process, nullptr, 0);
        return;
    }
    self.killed.push_back(process);
    self.pause = first_pause;
    self.changed.notify_all();
}

void wait_for_background() {
    Background& self = background();
    std::unique_lock guard(self.lock);
    self.changed.wait(guard, [&self] { return self.work.empty() && !self.is_busy; });
}

}  // namespace thumbnails
