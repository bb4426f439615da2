#include "quicklook/turns.h"

#include <algorithm>

namespace thumbnails {

bool Turns::has_room() const {
    if (running_.size() >= at_most_) return false;
    const Clock::time_point slow = Clock::now() - patience_;
    const auto quick = std::count_if(running_.begin(), running_.end(),
                                     [slow](Clock::time_point since) { return since > slow; });
    return static_cast<size_t>(quick) < at_once_;
}

void Turns::let_in() {
    if (waiters_.empty() || !has_room()) return;
    waiters_.front()->notify_one();
}

Turns::Turn::Turn(Turns& turns) : turns_(turns) {
    std::unique_lock guard(turns_.lock_);
    Waiter self;
    turns_.waiters_.push_front(&self);
    // Looks again now and then, because nothing tells when a running turn becomes slow.
    while (turns_.waiters_.front() != &self || !turns_.has_room()) {
        self.wait_for(guard, turns_.patience_ / 4);
    }
    turns_.waiters_.remove(&self);
    place_ = turns_.running_.insert(turns_.running_.end(), Clock::now());
    turns_.let_in();
}

Turns::Turn::~Turn() {
    const std::lock_guard guard(turns_.lock_);
    turns_.running_.erase(place_);
    turns_.let_in();
}

size_t Turns::waiting() {
    const std::lock_guard guard(lock_);
    return waiters_.size();
}

}  // namespace thumbnails
