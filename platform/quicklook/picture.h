// A picture in memory.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <vector>

namespace thumbnails {

// Four bytes a pixel: red, green, blue, alpha, colours not multiplied by alpha. A picture without
// bytes is no picture.
struct Picture {
    int width = 0, height = 0;
    std::vector<uint8_t> pixels;

    explicit operator bool() const { return !pixels.empty(); }
};

struct Box {
    int width = 0, height = 0;
};

// The screen that a picture is drawn for.
struct Screen {
    double scale = 1;  // pixels a point
    bool is_dark = false;
};

// The size that `original` has when it is made to fit the box. It is never enlarged, and no side is
// 0.
Box fit(Box original, Box box);

// Scales the picture to fit the box; returns the picture itself when it fits already.
Picture fitted(Picture picture, Box box);

}  // namespace thumbnails
