#include "preview/dv_data_provider.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

const CGDataProviderCallbacks dp_provider_callbacks = {get_bytes, skip_bytes, provider_rewind,
                                                       release_info};
const CGDataProviderDirectAccessCallbacks dp_direct_callbacks = {
    get_byte_pointer, release_byte_pointer, nullptr, release_info};

CGDataProviderRef create_data_provider(void* data, uint32_t size, uint32_t free_data,
                                       int32_t direct_access) {
    auto* provider = static_cast<dv_provider_t*>(calloc(1, sizeof(dv_provider_t)));
    if (!provider) {
        if (free_data) free(data);
        return nullptr;
    }
    provider->data = data;
    provider->size = size;
    provider->free_data = free_data;
    provider->direct_access = direct_access != 0;
    provider->released = 1;
    if (direct_access) {
        return CGDataProviderCreateDirectAccess(provider, size, &dp_direct_callbacks);
    }
    return CGDataProviderCreate(provider, &dp_provider_callbacks);
}

size_t get_bytes(void* block, void* buffer, size_t count) {
    auto* provider = static_cast<dv_provider_t*>(block);
    if (provider->position >= provider->size) return 0;
    const uint32_t left = provider->size - provider->position;
    const auto copied = static_cast<uint32_t>(std::min<size_t>(count, left));
    memcpy(buffer, static_cast<char*>(provider->data) + provider->position, copied);
    provider->position += copied;
    return copied;
}

void skip_bytes(void* block, size_t count) {
    static_cast<dv_provider_t*>(block)->position += static_cast<uint32_t>(count);
}

void provider_rewind(void* block) { static_cast<dv_provider_t*>(block)->position = 0; }

const void* get_byte_pointer(void* block) {
    auto* provider = static_cast<dv_provider_t*>(block);
    provider->released = 0;
    return provider->data;
}

void release_byte_pointer(void* block, const void* pointer) {
    auto* provider = static_cast<dv_provider_t*>(block);
    if (pointer == provider->data) provider->released = 1;
}

void release_info(void* block) {
    auto* provider = static_cast<dv_provider_t*>(block);
    if (provider->free_data) {
        free(provider->data);
        if (provider->direct_access && !provider->released) {
            printf("Warning: Freeing unreleased byte pointer!\n");
        }
        if (provider->verbose) printf("free data.. bytes: %d\n", provider->size);
    } else if (provider->verbose) {
        printf("dont free.. bytes: %d\n", provider->size);
    }
    free(provider);
}
