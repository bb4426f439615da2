// Loading an image with gdk-pixbuf, no larger than a box. One thread.
#pragma once

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <functional>
#include <string>
#include <vector>

#include "quicklook/picture.h"

namespace thumbnails {

struct ImageSize {
    Box box;
    Box original = {};
    bool is_too_large = false;
};

struct LoadedImage {
    GdkPixbuf* pixbuf = nullptr;  // upright and within the box; null on failure
    bool is_unknown = false;      // no loader knows the format
};

// Puts more bytes into the buffer and returns how many; 0 at the end, negative on failure.
using ReadMore = std::function<ssize_t(char* buffer, size_t size)>;

// The image that begins with `start`. Fills in the original size.
LoadedImage load_image(const std::vector<char>& start, const ReadMore& read_more, ImageSize& size);

// Writes the pixels as the answer.
void write_image(const GdkPixbuf* pixbuf, const ImageSize& size, const std::string& type);

}  // namespace thumbnails
