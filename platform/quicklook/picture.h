// A picture in memory.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <vector>

namespace thumbnails {

// Four bytes a pixel: red, green, blue, alpha, colours not multiplied by alpha. No bytes: none.
struct Picture {
    int width = 0, height = 0;
    std::vector<uint8_t> pixels;

    explicit operator bool() const { return !pixels.empty(); }
};

struct Box {
    int width = 0, height = 0;
};

// The size of `original` when it is made to fit the box; it is never enlarged, and no side is 0.
Box fit(Box original, Box box);

// The picture itself if it fits already.
Picture fitted(Picture picture, Box box);

}  // namespace thumbnails
