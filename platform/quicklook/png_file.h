// PNG files with text in them, as the desktop's thumbnail cache holds them. Any thread.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "quicklook/picture.h"

namespace thumbnails {

using PngTexts = std::map<std::string, std::string>;

struct PngHead {
    int width, height;
    PngTexts texts;  // tEXt chunks before the pixels
};

// Reads size and texts without decoding. No value for anything but a PNG file.
std::optional<PngHead> png_head(const std::string& file);

// Decodes in this process. Use it only for files whose head says that the picture is small. The
// picture is empty when the file is damaged.
Picture decode_png(const std::string& file);

// The bytes of a PNG file; empty on failure.
std::string encode_png(const Picture& picture, const PngTexts& texts);

}  // namespace thumbnails
