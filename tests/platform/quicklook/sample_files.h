// Files to make thumbnails of.
#pragma once

#include <stdint.h>

#include <string>

namespace test {

// Left half red, right half blue. `kind` is a type that gdk-pixbuf writes: "png", "jpeg", "tiff".
// With `is_clear` the lower half is transparent (PNG only).
std::string image_bytes(int width, int height, const char* kind, bool is_clear = false);

// Left half red, right half blue.
std::string svg_bytes(int width, int height);

// One page of the PDF operators in `content`, in points.
std::string pdf_bytes(int width, int height, const std::string& content);

// A film of `frames` equal pictures, left half red, right half blue: an AVI file of JPEG pictures.
std::string film_bytes(int width, int height, int frames);

// A valid PNG file of one bit a pixel, all white.
std::string white_png_bytes(uint32_t width, uint32_t height);

// A PNG file with `count` texts, each of `size` bytes, which take little space in the file.
std::string with_swelling_texts(const std::string& png, int count, uint32_t size);

}  // namespace test
