#include <AppKit/AppKit.h>
#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace {

// A mark that another thread sets.
class Gate {
  public:
    void open() {
        const std::lock_guard<std::mutex> lock(mutex_);
        is_open_ = true;
        changed_.notify_all();
    }
    void wait() {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this] { return is_open_; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool is_open_ = false;
};

dispatch_queue_t global_queue() {
    return dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0);
}

// Runs the main thread's loop in one mode until `done`.
template <typename condition>
void run_until(NSString* mode, condition done) {
    while (!done()) {
        @autoreleasepool {
            [[NSRunLoop currentRunLoop] runMode:mode
                                     beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
        }
    }
}

struct Order {
    std::vector<int> seen;
    bool on_main = true;
};
struct Numbered {
    Order* order;
    int number;
};

void append(void* context) {
    auto* piece = static_cast<Numbered*>(context);
    piece->order->seen.push_back(piece->number);
    if (![NSThread isMainThread]) piece->order->on_main = false;
    delete piece;
}

}  // namespace

// This must be the first case: the main thread has no run loop before it.
TEST(Dispatch, MainWorkRunsInItsOrderAndNotAtOnce) {
    Order order;
    for (int i = 0; i < 20; i++) {
        dispatch_async_f(dispatch_get_main_queue(), new Numbered{&order, i}, append);
    }
    EXPECT_TRUE(order.seen.empty());
    run_until(NSDefaultRunLoopMode, [&] { return order.seen.size() == 20; });
    for (int i = 0; i < 20; i++) EXPECT_EQ(order.seen[i], i);
    EXPECT_TRUE(order.on_main);
}

TEST(Dispatch, TheQueuesAreTheSameAtEveryCall) {
    EXPECT_EQ(global_queue(), dispatch_get_global_queue(0, 0));
    EXPECT_EQ(dispatch_get_main_queue(), dispatch_get_main_queue());
    EXPECT_NE(global_queue(), dispatch_get_main_queue());
    EXPECT_EQ(dispatch_get_global_queue(77, 0), nullptr);
    EXPECT_EQ(dispatch_get_global_queue(0, 1), nullptr);
}

TEST(Dispatch, GlobalWorkRunsOnAnotherThread) {
    struct Work {
        Gate gate;
        pthread_t thread;
    } work;
    dispatch_async_f(global_queue(), &work, [](void* context) {
        auto* work = static_cast<Work*>(context);
        work->thread = pthread_self();
        work->gate.open();
    });
    work.gate.wait();
    EXPECT_FALSE(pthread_equal(work.thread, pthread_self()));
}

TEST(Dispatch, GlobalWorkHasAnAutoreleasePool) {
    Gate gate;
    dispatch_async_f(global_queue(), &gate, [](void* context) {
        [[[NSObject alloc] init] autorelease];
        static_cast<Gate*>(context)->open();
    });
    gate.wait();
}

TEST(Dispatch, APieceThatWaitsHoldsNoOtherUp) {
    struct {
        Gate first, second;
    } gates;
    const auto both = &gates;
    dispatch_async_f(global_queue(), both, [](void* context) {
        static_cast<decltype(both)>(context)->second.wait();
        static_cast<decltype(both)>(context)->first.open();
    });
    dispatch_async_f(global_queue(), both,
                     [](void* context) { static_cast<decltype(both)>(context)->second.open(); });
    gates.first.wait();
}

TEST(Dispatch, AThousandPiecesAllRun) {
    static std::atomic<int> count;
    for (int i = 0; i < 1000; i++) {
        dispatch_async_f(global_queue(), nullptr, [](void*) { count++; });
    }
    run_until(NSDefaultRunLoopMode, [] { return count == 1000; });
    EXPECT_EQ(count, 1000);
}

TEST(Dispatch, MainWorkFromAnotherThreadWakesTheRunLoop) {
    Order order;
    dispatch_async_f(global_queue(), &order, [](void* context) {
        dispatch_async_f(dispatch_get_main_queue(), new Numbered{static_cast<Order*>(context), 1},
                         append);
    });
    run_until(NSDefaultRunLoopMode, [&] { return !order.seen.empty(); });
    EXPECT_TRUE(order.on_main);
}

TEST(Dispatch, MainWorkRunsInEveryCommonMode) {
    CFRunLoopAddCommonMode(CFRunLoopGetCurrent(), (CFStringRef)NSEventTrackingRunLoopMode);
    Order order;
    dispatch_async_f(dispatch_get_main_queue(), new Numbered{&order, 1}, append);
    run_until(NSEventTrackingRunLoopMode, [&] { return !order.seen.empty(); });
    EXPECT_EQ(order.seen.size(), 1u);
}

TEST(Dispatch, NoQueueOrNoWorkIsIgnored) {
    dispatch_async_f(nullptr, nullptr, [](void*) { FAIL(); });
    dispatch_async_f(global_queue(), nullptr, nullptr);
}
