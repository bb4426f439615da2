// The pixels of an image, for those who show it.
#pragma once

#include <CoreGraphics/CGImage.h>

#include <string>

// Writes the image's present pixels as bytes red, green, blue, alpha, colours multiplied by alpha,
// top row first, into rows of `bytes_per_row` bytes. Pixels that the provider does not serve are
// transparent.
void copy_image_pixels(CGImageRef image, uint8_t* pixels, size_t bytes_per_row);

// The pixels for each point of the screen on which pictures are shown: 1 until it is set. Any
// thread.
void set_display_scale(double scale);
double display_scale();

// Whether pictures are shown on dark ground: false until it is set. Any thread.
void set_display_is_dark(bool is_dark);
bool is_display_dark();

// The pixels for each point of an image: 1 unless it was made for a finer screen. Set this before
// the image is shared.
void set_image_scale(CGImageRef image, double scale);
double image_scale(CGImageRef image);

// The path of the file that the image shows; empty when it is not known. Set this before the image
// is shared.
void set_image_source(CGImageRef image, const std::string& path);
std::string image_source(CGImageRef image);
