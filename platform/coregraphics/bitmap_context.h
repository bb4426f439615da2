// Bitmap contexts keep the caller's memory in step with what cairo has drawn.
#pragma once

#include <vector>

#include "coregraphics/context.h"

// Writes the changed area, given in device space, to the caller's memory.
void store_bitmap(CGContextRef context, const Extents& extents);

// A bitmap context's drawing in the pixels of a finer screen: bytes red, green, blue, alpha,
// colours multiplied by alpha, top row first, without gaps.
struct FinerPixels {
    size_t width = 0, height = 0;
    double scale = 1;
    std::vector<uint8_t> bytes;
};

// False when no bitmap context of this size draws into this memory, or the screen is not finer.
bool copy_finer_pixels(const uint8_t* memory, size_t width, size_t height, FinerPixels* pixels);

// Call this when a context ends.
void forget_bitmap(CGContextRef context);
