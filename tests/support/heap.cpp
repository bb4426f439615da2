#include "support/heap.h"

#include <malloc.h>

#include <fstream>
#include <string>

// Defined only with the address sanitizer, whose heap mallinfo2 does not see.
extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace test {

bool has_sanitizers_heap() { return __sanitizer_get_current_allocated_bytes != nullptr; }

size_t memory_in_use() {
    if (has_sanitizers_heap()) return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

long anonymous_memory(pid_t process) {
    std::ifstream rollup("/proc/" + std::to_string(process) + "/smaps_rollup");
    long sum = 0;
    for (std::string word; rollup >> word;) {
        long kilobytes = 0;
        const bool is_counted = word == "Anonymous:" || word == "Swap:";
        if (is_counted && rollup >> kilobytes) sum += kilobytes * 1024;
    }
    return sum;
}

}  // namespace test
