#include <host/memory_reserve.h>

#include <stdlib.h>
#include <string.h>

#include <array>
#include <atomic>
#include <new>

namespace {

// Small enough for the heap, so that a block that is given back serves what it is needed for.
constexpr size_t block_size = 32 * 1024;
std::array<std::atomic<void*>, 8> reserve;
std::atomic<std::new_handler> decided;  // by the program itself
std::atomic<bool> is_short;

bool use_block() {
    for (auto& block : reserve) {
        void* const memory = block.exchange(nullptr);
        free(memory);
        if (memory) return true;
    }
    return false;
}

void use_reserve() {
    if (use_block()) return;
    const std::new_handler next = decided;
    if (!next) throw std::bad_alloc();
    next();
}

// The reserve is no help to a request that is larger than all of it.
bool may_use_reserve(size_t count, size_t size) {
    return count == 0 || size <= block_size * reserve.size() / count;
}

template <typename Allocation>
void* allocated(size_t count, size_t size, const Allocation& allocation) {
    void* memory = allocation();
    while (!memory && may_use_reserve(count, size) && use_block()) memory = allocation();
    if (!memory) is_short = true;
    return memory;
}

}  // namespace

void keep_memory_reserve() {
    if (std::get_new_handler() != use_reserve) decided = std::set_new_handler(use_reserve);
    for (auto& block : reserve) {
        if (!block) free(block.exchange(malloc(block_size)));
    }
}

bool memory_was_short() { return is_short.exchange(false); }

void* zeroed_memory(size_t count, size_t size) {
    return allocated(count, size, [=] { return calloc(count, size); });
}

// What the plug-in's own calls lead to: its bundle is linked with these names.
extern "C" {

__attribute__((visibility("default"))) void* __wrap_calloc(size_t count, size_t size) {
    return zeroed_memory(count, size);
}

__attribute__((visibility("default"))) void* __wrap_malloc(size_t size) {
    return allocated(1, size, [=] { return malloc(size); });
}

__attribute__((visibility("default"))) char* __wrap_strdup(const char* text) {
    const size_t size = strlen(text) + 1;
    void* const copy = __wrap_malloc(size);
    return copy ? static_cast<char*>(memcpy(copy, text, size)) : nullptr;
}
}
