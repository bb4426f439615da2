// Ends a stage's hold on the keyboard when no menu follows in time: while the toolkit loads,
// nothing else would. Start and stop on the main thread.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

class KeyboardLimit {
  public:
    KeyboardLimit() = default;
    ~KeyboardLimit() { stop(); }
    KeyboardLimit(const KeyboardLimit&) = delete;
    KeyboardLimit& operator=(const KeyboardLimit&) = delete;

    // Calls `give_back` on a thread of its own after so many seconds, unless stopped before.
    void start(double seconds, std::function<void()> give_back);
    // Afterwards `give_back` is not running and will not run.
    void stop();

  private:
    std::mutex lock_;
    std::condition_variable changed_;
    bool is_stopped_ = false;
    std::thread thread_;
};
