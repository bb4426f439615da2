#include <Carbon/MacMemory.h>
#include <host/memory_reserve.h>

#include <stdlib.h>

namespace {

// A handle points at its first member.
struct Block {
    Ptr data;
    Size size;
};

Block* block_of(Handle handle) { return reinterpret_cast<Block*>(handle); }

}  // namespace

Handle NewHandleClear(Size size) {
    if (size < 0) return nullptr;
    auto* block = static_cast<Block*>(zeroed_memory(1, sizeof(Block)));
    if (!block) return nullptr;
    // A block without bytes has an address too.
    *block = {static_cast<Ptr>(zeroed_memory(1, size ? static_cast<size_t>(size) : 1)), size};
    if (block->data) return &block->data;
    free(block);
    return nullptr;
}

Size GetHandleSize(Handle handle) { return handle ? block_of(handle)->size : 0; }

void DisposeHandle(Handle handle) {
    if (!handle) return;
    free(block_of(handle)->data);
    free(block_of(handle));
}
