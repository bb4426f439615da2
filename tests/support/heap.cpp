#include "support/heap.h"

#include <malloc.h>

// Defined only with the address sanitizer, whose heap mallinfo2 does not see.
extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace test {

bool has_sanitizers_heap() { return __sanitizer_get_current_allocated_bytes != nullptr; }

size_t memory_in_use() {
    if (has_sanitizers_heap()) return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

}  // namespace test
