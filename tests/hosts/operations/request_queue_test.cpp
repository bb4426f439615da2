// Requests that the queue's thread cannot carry out.
#include "operations/request_queue.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <new>
#include <optional>

namespace {

using operations::Report;
using operations::RequestQueue;

class Waiting : public operations::Observer {
  public:
    Report report() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return report_.has_value(); });
        return *report_;
    }

  private:
    void ended(const Report& report) override {
        const std::lock_guard lock(mutex_);
        report_ = report;
        changed_.notify_all();
    }
    std::mutex mutex_;
    std::condition_variable changed_;
    std::optional<Report> report_;
};

// An exception that left the thread would end the program with the operation half done.
TEST(RequestQueue, ARequestWithoutMemoryIsRefusedAndTheNextOneIsCarriedOut) {
    // They outlive the queue's thread.
    const auto first = std::make_shared<Waiting>(), second = std::make_shared<Waiting>();
    int tries = 0;
    RequestQueue queue([&](const RequestQueue::Job& job) {
        if (tries++ == 0) throw std::bad_alloc();
        job.observer->ended({});
    });
    operations::Request request;
    request.sources = {"/a", "/b"};
    queue.add({request, first});
    queue.add({request, second});
    const Report refused = first->report();
    ASSERT_EQ(refused.outcomes.size(), 2u);
    EXPECT_EQ(refused.outcomes[1].source, "/b");
    EXPECT_EQ(refused.outcomes[1].state, operations::State::Failed);
    EXPECT_NE(refused.outcomes[1].reason, "");
    EXPECT_TRUE(second->report().outcomes.empty());
}

}  // namespace
