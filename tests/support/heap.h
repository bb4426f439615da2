// What this process has allocated.
#pragma once

#include <stddef.h>

namespace test {

// The bytes allocated and not freed, with and without the address sanitizer; with the allocator's
// own share where it is not the sanitizer's.
size_t memory_in_use();

bool has_sanitizers_heap();

}  // namespace test
