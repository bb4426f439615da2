#include "coregraphics/image.h"

#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <vector>

namespace {

struct Memory {
    std::vector<uint8_t> bytes;
    size_t position = 0;
    int released = 0, pointers = 0;
};

size_t get_bytes(void* info, void* buffer, size_t count) {
    auto* memory = static_cast<Memory*>(info);
    count = std::min({count, memory->bytes.size() - memory->position, size_t{3}});  // in bits
    memcpy(buffer, memory->bytes.data() + memory->position, count);
    memory->position += count;
    return count;
}
void skip_bytes(void* info, size_t count) { static_cast<Memory*>(info)->position += count; }
void go_back(void* info) { static_cast<Memory*>(info)->position = 0; }
void release(void* info) { static_cast<Memory*>(info)->released++; }
const void* byte_pointer(void* info) {
    auto* memory = static_cast<Memory*>(info);
    memory->pointers++;
    return memory->bytes.data();
}
void release_pointer(void* info, const void*) { static_cast<Memory*>(info)->pointers--; }
size_t bytes_at(void* info, void* buffer, size_t offset, size_t count) {
    auto* memory = static_cast<Memory*>(info);
    memcpy(buffer, memory->bytes.data() + offset, count);
    return count;
}

const CGDataProviderCallbacks sequential = {get_bytes, skip_bytes, go_back, release};
const CGDataProviderDirectAccessCallbacks in_place = {byte_pointer, release_pointer, nullptr,
                                                      release};
const CGDataProviderDirectAccessCallbacks at_offset = {nullptr, nullptr, bytes_at, release};

CGImageRef create(size_t width, size_t height, size_t bits, size_t row, CGBitmapInfo info,
                  CGDataProviderRef provider) {
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGImageRef image = CGImageCreate(width, height, 8, bits, row, space, info, provider, nullptr,
                                     false, kCGRenderingIntentDefault);
    CGColorSpaceRelease(space);
    return image;
}

std::vector<uint8_t> pixels_of(CGImageRef image) {
    std::vector<uint8_t> pixels(CGImageGetWidth(image) * CGImageGetHeight(image) * 4, 0xee);
    copy_image_pixels(image, pixels.data(), CGImageGetWidth(image) * 4);
    return pixels;
}

// One pixel in some format, as red, green, blue, alpha.
std::vector<uint8_t> pixel_in(CGBitmapInfo info, std::vector<uint8_t> bytes) {
    CGDataProviderRef provider =
        CGDataProviderCreateWithData(nullptr, bytes.data(), bytes.size(), nullptr);
    CGImageRef image = create(1, 1, bytes.size() * 8, bytes.size(), info, provider);
    CGDataProviderRelease(provider);
    const std::vector<uint8_t> pixels = pixels_of(image);
    CGImageRelease(image);
    return pixels;
}

using Pixel = std::vector<uint8_t>;

}  // namespace

TEST(Image, EveryOrderOfComponentsIsRead) {
    EXPECT_EQ(pixel_in(kCGImageAlphaPremultipliedFirst, {80, 10, 20, 30}), Pixel({10, 20, 30, 80}));
    EXPECT_EQ(pixel_in(kCGImageAlphaPremultipliedLast, {10, 20, 30, 80}), Pixel({10, 20, 30, 80}));
    EXPECT_EQ(pixel_in(kCGImageAlphaNoneSkipLast, {10, 20, 30, 0}), Pixel({10, 20, 30, 255}));
    EXPECT_EQ(pixel_in(kCGImageAlphaNoneSkipFirst, {0, 10, 20, 30}), Pixel({10, 20, 30, 255}));
    EXPECT_EQ(pixel_in(kCGImageAlphaNone, {10, 20, 30}), Pixel({10, 20, 30, 255}));
}

TEST(Image, LooseColoursAreMultipliedByAlpha) {
    EXPECT_EQ(pixel_in(kCGImageAlphaLast, {255, 100, 0, 51}), Pixel({51, 20, 0, 51}));
    EXPECT_EQ(pixel_in(kCGImageAlphaFirst, {51, 255, 100, 0}), Pixel({51, 20, 0, 51}));
}

TEST(Image, AllKindsOfProvidersServeTheSame) {
    Memory memory;
    for (int i = 0; i < 16; i++) memory.bytes.push_back(static_cast<uint8_t>(i));
    CGDataProviderRef providers[] = {
        CGDataProviderCreate(&memory, &sequential),
        CGDataProviderCreateDirectAccess(&memory, 16, &in_place),
        CGDataProviderCreateDirectAccess(&memory, 16, &at_offset),
        CGDataProviderCreateWithData(nullptr, memory.bytes.data(), 16, nullptr),
    };
    for (CGDataProviderRef provider : providers) {
        CGImageRef image = create(2, 2, 32, 8, kCGImageAlphaPremultipliedLast, provider);
        EXPECT_EQ(pixels_of(image), memory.bytes);
        EXPECT_EQ(pixels_of(image), memory.bytes) << "the second reading";
        EXPECT_EQ(memory.pointers, 0) << "every pointer is given back";
        CGImageRelease(image);
        CGDataProviderRelease(provider);
    }
    EXPECT_EQ(memory.released, 3);
}

TEST(Image, TheProvidersBytesAreReadWhenTheyAreUsed) {
    Memory memory;
    memory.bytes = {1, 2, 3, 4};
    CGDataProviderRef provider = CGDataProviderCreateDirectAccess(&memory, 4, &in_place);
    CGImageRef image = create(1, 1, 32, 4, kCGImageAlphaPremultipliedLast, provider);
    CGDataProviderRelease(provider);
    EXPECT_EQ(memory.released, 0) << "the image keeps it";
    memory.bytes[0] = 9;
    EXPECT_EQ(pixels_of(image)[0], 9);
    CGImageRelease(image);
    EXPECT_EQ(memory.released, 1);
}

TEST(Image, RowsThatAreNotThereAreTransparent) {
    const uint8_t bytes[6] = {1, 2, 3, 4, 5, 6};
    CGDataProviderRef provider = CGDataProviderCreateWithData(nullptr, bytes, 6, nullptr);
    CGImageRef image = create(1, 2, 32, 4, kCGImageAlphaPremultipliedLast, provider);
    EXPECT_EQ(pixels_of(image), Pixel({1, 2, 3, 4, 0, 0, 0, 0}));
    CGImageRelease(image);
    CGDataProviderRelease(provider);
}

TEST(Image, WhatCannotBeShownIsNoImage) {
    const uint8_t bytes[16] = {};
    CGDataProviderRef provider = CGDataProviderCreateWithData(nullptr, bytes, 16, nullptr);
    EXPECT_EQ(create(0, 1, 32, 4, kCGImageAlphaPremultipliedLast, provider), nullptr);
    EXPECT_EQ(create(2, 1, 32, 7, kCGImageAlphaPremultipliedLast, provider), nullptr);
    EXPECT_EQ(create(1, 1, 16, 4, kCGImageAlphaPremultipliedLast, provider), nullptr);
    EXPECT_EQ(create(1, 1, 32, 4, kCGImageAlphaNone, provider), nullptr);
    EXPECT_EQ(create(1, 1, 32, 4, kCGImageAlphaPremultipliedLast, nullptr), nullptr);
    CGDataProviderRelease(provider);
    EXPECT_EQ(CGImageGetWidth(nullptr), 0u);
    CGImageRelease(nullptr);
}
