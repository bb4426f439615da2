// Pictures whose pixels a data provider holds. An image does not copy them: each use of the image
// shows what the provider serves at that time. Any thread.
#pragma once

#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGGeometry.h>

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct CGImage* CGImageRef;

// Where alpha stands in a pixel. The names give the order of bytes in memory, on any processor.
enum CGImageAlphaInfo {
    kCGImageAlphaNone = 0,
    kCGImageAlphaPremultipliedLast = 1,
    kCGImageAlphaPremultipliedFirst = 2,
    kCGImageAlphaLast = 3,
    kCGImageAlphaFirst = 4,
    kCGImageAlphaNoneSkipLast = 5,
    kCGImageAlphaNoneSkipFirst = 6
};
typedef uint32_t CGBitmapInfo;

enum CGColorRenderingIntent { kCGRenderingIntentDefault = 0 };
typedef enum CGColorRenderingIntent CGColorRenderingIntent;

// A component has 8 bits. A pixel has 32 bits with any of the alpha places above except
// kCGImageAlphaNone, and 24 bits with kCGImageAlphaNone. The image keeps the provider. Null for
// anything else, for a size of 0, rows shorter than their pixels, or a decode array.
CGImageRef CGImageCreate(size_t width, size_t height, size_t bitsPerComponent, size_t bitsPerPixel,
                         size_t bytesPerRow, CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                         CGDataProviderRef provider, const CGFloat* decode, bool shouldInterpolate,
                         CGColorRenderingIntent intent);
CGImageRef CGImageRetain(CGImageRef image);
// Null is ignored.
void CGImageRelease(CGImageRef image);
// 0 for null.
size_t CGImageGetWidth(CGImageRef image);
size_t CGImageGetHeight(CGImageRef image);

#ifdef __cplusplus
}
#endif
