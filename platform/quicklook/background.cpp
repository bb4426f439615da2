#include "quicklook/background.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

#include "quicklook/helper_program.h"

namespace thumbnails {

namespace {

const size_t most_waiting = 16;
const auto between_reaping = std::chrono::milliseconds(500);

struct Background {
    std::mutex lock;
    std::condition_variable changed;
    std::deque<std::function<void()>> work;
    bool is_running = false, is_busy = false;
};

// Never destroyed: the thread lives until the process ends.
Background& background() {
    static Background& background = *new Background;
    return background;
}

void keep_house() {
    Background& self = background();
    std::unique_lock guard(self.lock);
    for (;;) {
        guard.unlock();
        const bool has_leftovers = reap_leftovers() > 0;
        guard.lock();
        const auto has_work = [&self] { return !self.work.empty(); };
        if (has_leftovers) {
            self.changed.wait_for(guard, between_reaping, has_work);
        } else {
            self.changed.wait(guard, has_work);
        }
        if (self.work.empty()) continue;
        const std::function<void()> next = std::move(self.work.front());
        self.work.pop_front();
        self.is_busy = true;
        guard.unlock();
        next();
        guard.lock();
        self.is_busy = false;
        self.changed.notify_all();
    }
}

// With the lock held.
bool start(Background& self) {
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
    if (!self.is_running && !start(self)) return;
    self.work.push_back(std::move(work));
    self.changed.notify_all();
}

void wait_for_background() {
    Background& self = background();
    std::unique_lock guard(self.lock);
    self.changed.wait(guard, [&self] { return self.work.empty() && !self.is_busy; });
}

}  // namespace thumbnails
