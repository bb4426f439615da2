#include "wayland/layer/keyboard_limit.h"

#include <signal.h>

#include <chrono>
#include <system_error>

void KeyboardLimit::start(double seconds, std::function<void()> give_back) {
    // Signals belong to the program's own threads.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        thread_ = std::thread([this, seconds, give_back = std::move(give_back)] {
            std::unique_lock lock(lock_);
            const std::chrono::duration<double> limit(seconds);
            if (!changed_.wait_for(lock, limit, [this] { return is_stopped_; })) give_back();
        });
    } catch (const std::system_error&) {
        // Without a thread the keyboard comes back when the menu closes.
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void KeyboardLimit::stop() {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard lock(lock_);
        is_stopped_ = true;
    }
    changed_.notify_one();
    thread_.join();
}
