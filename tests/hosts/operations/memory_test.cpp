// What counts beside an operation, where its thread gets no memory.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <new>
#include <thread>

#include "file_steps/tree_count.h"
#include "support/temp_folder.h"
#include "support/waiting.h"

namespace {

const std::thread::id main_thread = std::this_thread::get_id();
std::atomic<bool> threads_get_memory = true;
std::atomic<int> refusals = 0;

}  // namespace

void* operator new(size_t size) {
    const bool is_refused = !threads_get_memory && std::this_thread::get_id() != main_thread;
    refusals += is_refused;
    void* const memory = is_refused ? nullptr : malloc(size);
    if (!memory) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept { free(memory); }
void operator delete(void* memory, size_t) noexcept { free(memory); }

TEST(TreeCount, HasNoTotalWhereItsThreadGetsNoMemory) {
    test::TempFolder folder;
    folder.file("a name that is too long for a string without memory", "bytes");
    threads_get_memory = false;
    {
        const operations::TreeCount count({folder.path()}, 0, 0, 0);
        EXPECT_TRUE(test::wait_for([] { return refusals > 0; }));
        EXPECT_FALSE(count.is_done());
    }
    threads_get_memory = true;
    const operations::TreeCount count({folder.path()}, 0, 0, 0);
    EXPECT_TRUE(test::wait_for([&] { return count.is_done(); }));
    EXPECT_EQ(count.items(), 2u);
    EXPECT_EQ(count.bytes(), 5u);
}
