// A data provider that serves memory. Any thread, but only one at a time per provider.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <stdint.h>

// The info pointer of every provider made here. Zero-filled when made, freed by release_info.
struct dv_provider_t {
    void* data;
    uint32_t size;
    uint32_t position;   // where a sequential provider reads next
    uint32_t free_data;  // release_info also frees the data
    uint32_t verbose;    // release_info prints a line; create_data_provider never sets it
    uint32_t direct_access;
    uint32_t released;  // no byte pointer is in use
};

extern const CGDataProviderCallbacks dp_provider_callbacks;
extern const CGDataProviderDirectAccessCallbacks dp_direct_callbacks;

// Serves `size` bytes at `data`, in place or in sequence. The caller releases the provider.
CGDataProviderRef create_data_provider(void* data, uint32_t size, uint32_t free_data,
                                       int32_t direct_access);

size_t get_bytes(void* block, void* buffer, size_t count);
// The position may pass the end; reads there return no bytes.
void skip_bytes(void* block, size_t count);
void provider_rewind(void* block);
const void* get_byte_pointer(void* block);
void release_byte_pointer(void* block, const void* pointer);
// Frees the block, and the data if the provider owns it.
void release_info(void* block);
