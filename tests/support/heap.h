// The memory that this process has allocated, or that another has taken.
#pragma once

#include <stddef.h>
#include <sys/types.h>

namespace test {

// The bytes allocated and not freed, with and without the address sanitizer. Without it, the
// allocator's own overhead is included.
size_t memory_in_use();

bool has_sanitizers_heap();

// The bytes of a process that belong to no file, swapped ones included; 0 when it has gone. The
// pages of libraries are left out: they become its own when the last other user of them ends.
long anonymous_memory(pid_t process);

}  // namespace test
