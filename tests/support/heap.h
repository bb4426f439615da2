// The memory that this process has allocated.
#pragma once

#include <stddef.h>

namespace test {

// The bytes allocated and not freed, with and without the address sanitizer. Without it, the
// allocator's own overhead is included.
size_t memory_in_use();

bool has_sanitizers_heap();

}  // namespace test
