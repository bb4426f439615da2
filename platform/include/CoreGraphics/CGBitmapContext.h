// Contexts that draw into the caller's memory.
#pragma once

#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGImage.h>

#ifdef __cplusplus
extern "C" {
#endif

// `data` must outlive the context. Pixels are bytes in the order alpha, red, green, blue, with
// colours multiplied by alpha; the first row is the top one. A drawing is in `data` when the
// drawing call returns; between a save of the state and its restore, only when the restore returns.
// Null for null data, a size of 0, rows shorter than their pixels, or anything but 8 bits a
// component and kCGImageAlphaPremultipliedFirst.
CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bytesPerRow, CGColorSpaceRef space,
                                   CGBitmapInfo bitmapInfo);

#ifdef __cplusplus
}
#endif
