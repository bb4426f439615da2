#include "quicklook/turns.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace {

using std::chrono::milliseconds;
using thumbnails::Turns;

void wait_until(const auto& condition) {
    for (int i = 0; i < 30000 && !condition(); i++) usleep(2000);
    ASSERT_TRUE(condition());
}

TEST(Turns, TheNewestRequestIsNext) {
    Turns turns(1, 1, std::chrono::hours(1));
    auto held = std::make_optional<Turns::Turn>(turns);
    std::mutex lock;
    std::vector<int> order;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([&, i] {
            const Turns::Turn turn(turns);
            const std::lock_guard guard(lock);
            order.push_back(i);
        });
        wait_until([&] { return turns.waiting() == static_cast<size_t>(i) + 1; });
    }
    held.reset();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(order, (std::vector<int>{3, 2, 1, 0}));
}

TEST(Turns, NoMoreRunThanAllowed) {
    Turns turns(3, 3, std::chrono::hours(1));
    std::atomic<int> running = 0, most = 0;
    std::atomic<bool> may_end = false;
    std::vector<std::thread> threads;
    for (int i = 0; i < 12; i++) {
        threads.emplace_back([&] {
            const Turns::Turn turn(turns);
            const int now = ++running;
            int seen = most;
            while (now > seen && !most.compare_exchange_weak(seen, now)) {
            }
            while (!may_end) usleep(1000);
            running--;
        });
    }
    // All turns have arrived: those that run and those that wait.
    wait_until([&] { return running + turns.waiting() == 12; });
    EXPECT_EQ(running, 3);
    may_end = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(most, 3);
    EXPECT_EQ(turns.waiting(), 0u);
}

TEST(Turns, ASlowTurnMakesRoomForTheNext) {
    Turns turns(1, 2, milliseconds(20));
    const Turns::Turn slow(turns);
    const Turns::Turn next(turns);  // would wait for ever otherwise
    SUCCEED();
}

TEST(Turns, SlowTurnsAreNotWithoutLimit) {
    Turns turns(1, 2, milliseconds(20));
    auto first = std::make_optional<Turns::Turn>(turns);
    const Turns::Turn second(turns);
    std::atomic<bool> is_in = false;
    std::thread third([&] {
        const Turns::Turn turn(turns);
        is_in = true;
    });
    wait_until([&] { return turns.waiting() == 1; });
    // The second is slow now, too.
    const auto slow = std::chrono::steady_clock::now() + milliseconds(40);
    wait_until([&] { return std::chrono::steady_clock::now() > slow; });
    EXPECT_EQ(turns.waiting(), 1u);
    EXPECT_FALSE(is_in);
    first.reset();
    third.join();
    EXPECT_TRUE(is_in);
}

}  // namespace
