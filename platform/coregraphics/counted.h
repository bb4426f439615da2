// Reference counts of the records behind Core Graphics' types.
#pragma once

#include <atomic>

// A record starts with one owner and dies with its last.
struct Counted {
    std::atomic<int> owners{1};
};

template <typename record>
record* retained(record* object) {
    if (object) object->owners.fetch_add(1, std::memory_order_relaxed);
    return object;
}

template <typename record>
void release(record* object) {
    if (object && object->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) delete object;
}
