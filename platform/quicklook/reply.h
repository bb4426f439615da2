// What the helper program of thumbnails writes back: one Reply, then `width * height` pixels of
// four bytes (red, green, blue, alpha; colours not multiplied by alpha), row after row.
#pragma once

#include <stdint.h>

namespace thumbnails {

// The descriptors that a decoder starts with.
inline constexpr int reply_descriptor = 3;
inline constexpr int file_descriptor = 4;

enum class Outcome : uint32_t {
    ready = 1,    // only asked whether the program starts
    picture,      // the pixels follow
    none,         // no file to look at: missing, not a plain file, not readable
    unsupported,  // not this decoder's business; `type` says what the content looks like
    broken,       // damaged, or larger than the limits allow
    too_slow,     // the thumbnailer program took too long
};

inline constexpr uint32_t reply_mark = 0x54686d31;

struct Reply {
    uint32_t mark;
    Outcome outcome;
    uint32_t width, height;
    uint32_t original_width, original_height;  // of an image, else 0
    char type[128];                            // content type, NUL-terminated; may be empty
};

}  // namespace thumbnails
