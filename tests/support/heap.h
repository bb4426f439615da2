// What a test's program has allocated.
#pragma once

#include <malloc.h>
#include <stddef.h>

// There where the address sanitizer allocates.
extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace test {

inline bool has_sanitizers_heap() { return __sanitizer_get_current_allocated_bytes != nullptr; }

// In bytes, with the allocator's own share where it is not the sanitizer's.
inline long heap_bytes() {
    if (has_sanitizers_heap()) return static_cast<long>(__sanitizer_get_current_allocated_bytes());
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<long>(heap.uordblks + heap.hblkhd);
}

}  // namespace test
