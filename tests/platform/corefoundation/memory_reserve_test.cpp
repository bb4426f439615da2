// What our code does that gets no memory: the handler that a `new` calls is called here.
#include <host/memory_reserve.h>

#include <gtest/gtest.h>
#include <stdint.h>
#include <stdlib.h>

#include <algorithm>
#include <new>

// A sanitizer would end the program for want of memory, which is what is tried here.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }

namespace {

constexpr int blocks = 8;
int decisions;

void need_memory() { std::get_new_handler()(); }

TEST(MemoryReserve, ServesSomeNeedsAndIsThereAgainAfterTheNextCall) {
    std::set_new_handler(nullptr);
    for (int menus = 0; menus < 3; menus++) {
        keep_memory_reserve();
        for (int need = 0; need < blocks; need++) EXPECT_NO_THROW(need_memory());
        EXPECT_THROW(need_memory(), std::bad_alloc);
    }
}

TEST(MemoryReserve, WithoutABlockTheProgramsOwnDecisionIsCarriedOut) {
    decisions = 0;
    std::set_new_handler([] { decisions++; });
    keep_memory_reserve();
    for (int need = 0; need < blocks; need++) need_memory();
    EXPECT_EQ(decisions, 0);
    need_memory();
    EXPECT_EQ(decisions, 1);
    std::set_new_handler(nullptr);
}

TEST(MemoryReserve, MemoryIsEmptyAndMissedOnlyWhereThereIsNone) {
    memory_was_short();
    auto* const memory = static_cast<char*>(zeroed_memory(10, 10));
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(std::count(memory, memory + 100, 0), 100);
    free(memory);
    EXPECT_FALSE(memory_was_short());
    // No machine has so much.
    for (const size_t size : {SIZE_MAX, SIZE_MAX / 4}) {
        EXPECT_EQ(zeroed_memory(2, size), nullptr);
        EXPECT_TRUE(memory_was_short());
        EXPECT_FALSE(memory_was_short());
    }
}

// A need that the blocks cannot serve leaves them for others.
TEST(MemoryReserve, IsNotUsedUpByWhatIsLargerThanAllOfIt) {
    std::set_new_handler(nullptr);
    keep_memory_reserve();
    EXPECT_EQ(zeroed_memory(1, SIZE_MAX / 2), nullptr);
    for (int need = 0; need < blocks; need++) EXPECT_NO_THROW(need_memory());
    EXPECT_THROW(need_memory(), std::bad_alloc);
    keep_memory_reserve();
}

}  // namespace
