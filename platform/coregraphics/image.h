// The pixels of an image, for those who show it.
#pragma once

#include <CoreGraphics/CGImage.h>

// Writes the image's present pixels as bytes red, green, blue, alpha, colours multiplied by alpha,
// top row first, into rows of `bytes_per_row` bytes. What the provider does not serve is
// transparent.
void copy_image_pixels(CGImageRef image, uint8_t* pixels, size_t bytes_per_row);
