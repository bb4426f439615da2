#include "coregraphics/data_provider.h"

#include <algorithm>

#include "coregraphics/counted.h"

struct CGDataProvider : Counted {
    void* info = nullptr;
    bool is_direct = false;
    size_t size = 0;  // of a direct one
    CGDataProviderCallbacks sequential = {};
    CGDataProviderDirectAccessCallbacks direct = {};
    // Memory given as it is.
    const void* memory = nullptr;
    CGDataProviderReleaseDataCallback release_memory = nullptr;

    ~CGDataProvider() {
        const auto release_info = is_direct ? direct.releaseProvider : sequential.releaseProvider;
        if (release_info) release_info(info);
        if (release_memory) release_memory(info, memory, size);
    }
};

namespace {

void read_sequentially(const CGDataProvider& provider, std::vector<uint8_t>& bytes) {
    const CGDataProviderCallbacks& calls = provider.sequential;
    if (calls.rewind) calls.rewind(provider.info);
    size_t count = 0;
    while (calls.getBytes && count < bytes.size()) {
        const size_t more =
            calls.getBytes(provider.info, bytes.data() + count, bytes.size() - count);
        if (more == 0) break;
        count += std::min(more, bytes.size() - count);
    }
    bytes.resize(count);
}

}  // namespace

ProvidedBytes::ProvidedBytes(CGDataProviderRef provider, size_t size)
    : provider_(CGDataProviderRetain(provider)) {
    if (!provider) return;
    const CGDataProviderDirectAccessCallbacks& direct = provider->direct;
    size_ = provider->is_direct ? std::min(size, provider->size) : size;
    if (provider->memory) {
        data_ = static_cast<const uint8_t*>(provider->memory);
        return;
    }
    if (direct.getBytePointer) pointer_ = direct.getBytePointer(provider->info);
    if (pointer_) {
        data_ = static_cast<const uint8_t*>(pointer_);
        return;
    }
    copy_.resize(size_);
    if (!provider->is_direct) {
        read_sequentially(*provider, copy_);
    } else {
        const auto get = direct.getBytes;
        copy_.resize(get ? std::min(size_, get(provider->info, copy_.data(), 0, size_)) : 0);
    }
    size_ = copy_.size();
    data_ = copy_.data();
}

ProvidedBytes::~ProvidedBytes() {
    if (pointer_ && provider_->direct.releaseBytePointer) {
        provider_->direct.releaseBytePointer(provider_->info, pointer_);
    }
    CGDataProviderRelease(provider_);
}

CGDataProviderRef CGDataProviderCreate(void* info, const CGDataProviderCallbacks* callbacks) {
    if (!callbacks) return nullptr;
    auto* provider = new CGDataProvider;
    provider->info = info;
    provider->sequential = *callbacks;
    return provider;
}

CGDataProviderRef CGDataProviderCreateDirectAccess(
    void* info, size_t size, const CGDataProviderDirectAccessCallbacks* callbacks) {
    if (!callbacks) return nullptr;
    auto* provider = new CGDataProvider;
    provider->info = info;
    provider->is_direct = true;
    provider->size = size;
    provider->direct = *callbacks;
    return provider;
}

CGDataProviderRef CGDataProviderCreateWithData(void* info, const void* data, size_t size,
                                               CGDataProviderReleaseDataCallback releaseData) {
    if (!data) return nullptr;
    auto* provider = new CGDataProvider;
    provider->info = info;
    provider->is_direct = true;
    provider->size = size;
    provider->memory = data;
    provider->release_memory = releaseData;
    return provider;
}

CGDataProviderRef CGDataProviderRetain(CGDataProviderRef provider) { return retained(provider); }

void CGDataProviderRelease(CGDataProviderRef provider) { release(provider); }
