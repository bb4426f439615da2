// What this process has allocated.
#pragma once

#include <stddef.h>

namespace test {

// The bytes allocated and not freed, with and without the address sanitizer.
size_t memory_in_use();

}  // namespace test
