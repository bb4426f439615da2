// What a `new` does that gets no memory: the handler that it calls is called here.
#include <host/memory_reserve.h>

#include <gtest/gtest.h>

#include <new>

namespace {

int decisions;

void need_memory() { std::get_new_handler()(); }

TEST(MemoryReserve, ServesOneNeedAndIsThereAgainAfterTheNextCall) {
    std::set_new_handler(nullptr);
    for (int menus = 0; menus < 3; menus++) {
        keep_memory_reserve();
        EXPECT_NO_THROW(need_memory());
        EXPECT_THROW(need_memory(), std::bad_alloc);
    }
}

TEST(MemoryReserve, WithoutTheBlockTheProgramsOwnDecisionIsCarriedOut) {
    decisions = 0;
    std::set_new_handler([] { decisions++; });
    keep_memory_reserve();
    need_memory();
    EXPECT_EQ(decisions, 0);
    need_memory();
    EXPECT_EQ(decisions, 1);
    std::set_new_handler(nullptr);
}

}  // namespace
