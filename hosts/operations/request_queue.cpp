#include "operations/request_queue.h"

#include <utility>

namespace operations {

RequestQueue::RequestQueue(std::function<void(Job)> carry_out) : carry_out_(std::move(carry_out)) {}

RequestQueue::~RequestQueue() {
    {
        const std::lock_guard guard(mutex_);
        ends_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) thread_.join();
}

void RequestQueue::add(Job job) {
    const std::lock_guard guard(mutex_);
    waiting_.push_back(std::move(job));
    if (!thread_.joinable()) thread_ = std::thread(&RequestQueue::run, this);
    changed_.notify_all();
}

bool RequestQueue::next(Job& job) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return ends_ || !waiting_.empty(); });
    if (ends_) return false;
    job = std::move(waiting_.front());
    waiting_.pop_front();
    return true;
}

void RequestQueue::run() {
    for (Job job; next(job);) carry_out_(std::move(job));
}

}  // namespace operations
