#include "operations/request_queue.h"

#include <errno.h>
#include <host/text.h>

#include <new>
#include <system_error>
#include <utility>

namespace operations {

namespace {

Report refusal_of(const Request& request, const std::string& reason) {
    Report report;
    for (const std::string& source : request.sources) {
        report.outcomes.push_back({source, State::Failed, "", reason});
    }
    return report;
}

}  // namespace

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
    if (take(job)) return;
    job.observer->ended(
        refusal_of(job.request, translated("the system cannot start another thread")));
}

// False, and the job is as it was, where no thread is to be had.
bool RequestQueue::take(Job& job) {
    const std::lock_guard guard(mutex_);
    try {
        if (!thread_.joinable()) thread_ = std::thread(&RequestQueue::run, this);
    } catch (const std::system_error&) {
        return false;
    }
    waiting_.push_back(std::move(job));
    changed_.notify_all();
    return true;
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
    for (Job job; next(job);) {
        try {
            carry_out_(job);
        } catch (const std::bad_alloc&) {
            job.observer->ended(refusal_of(job.request, error_text(ENOMEM)));
        }
    }
}

}  // namespace operations
