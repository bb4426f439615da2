// Reading what a data provider serves.
#pragma once

#include <CoreGraphics/CGDataProvider.h>

#include <stdint.h>

#include <vector>

// The first `size` bytes that a provider serves, from construction to destruction; fewer when the
// provider has fewer.
class ProvidedBytes {
  public:
    ProvidedBytes(CGDataProviderRef provider, size_t size);
    ~ProvidedBytes();
    ProvidedBytes(const ProvidedBytes&) = delete;
    ProvidedBytes& operator=(const ProvidedBytes&) = delete;

    const uint8_t* data() const { return data_; }
    size_t size() const { return size_; }

  private:
    CGDataProviderRef provider_;
    const void* pointer_ = nullptr;  // the provider's own
    std::vector<uint8_t> copy_;
    const uint8_t* data_ = nullptr;
    size_t size_ = 0;
};
