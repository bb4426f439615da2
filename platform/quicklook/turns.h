// Decides who may use the helper program next. Any thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>

namespace thumbnails {

// At most `at_once` turns run together. The newest caller is let in first, because it asks for the
// row that the user looks at now. A turn that takes longer than `patience` no longer counts, so
// that slow files do not hold up the others; but never more than `at_most` run.
class Turns {
  public:
    using Clock = std::chrono::steady_clock;

    Turns(size_t at_once, size_t at_most, Clock::duration patience)
        : at_once_(at_once), at_most_(at_most), patience_(patience) {}

    // One turn: its constructor waits for the turn, its destructor ends it.
    class Turn {
      public:
        explicit Turn(Turns& turns);
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

      private:
        Turns& turns_;
        std::list<Clock::time_point>::iterator place_;
    };

    // How many callers wait now.
    size_t waiting();

  private:
    bool has_room() const;
    void let_in();

    const size_t at_once_, at_most_;
    const Clock::duration patience_;
    using Waiter = std::condition_variable;
    std::mutex lock_;
    std::list<Waiter*> waiters_;            // the newest in front
    std::list<Clock::time_point> running_;  // since when, the oldest in front
};

}  // namespace thumbnails
