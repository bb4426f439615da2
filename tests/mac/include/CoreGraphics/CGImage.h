#pragma once

#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGGeometry.h>

extern "C" {

typedef struct CGColorSpace* CGColorSpaceRef;
typedef struct CGImage* CGImageRef;

enum CGColorRenderingIntent { kCGRenderingIntentDefault };
typedef enum CGColorRenderingIntent CGColorRenderingIntent;

enum CGImageAlphaInfo {
    kCGImageAlphaNone,
    kCGImageAlphaPremultipliedLast,
    kCGImageAlphaPremultipliedFirst
};
typedef enum CGImageAlphaInfo CGImageAlphaInfo;
typedef uint32_t CGBitmapInfo;

CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void);
void CGColorSpaceRelease(CGColorSpaceRef space);

CGImageRef CGImageCreate(size_t width, size_t height, size_t bitsPerComponent, size_t bitsPerPixel,
                         size_t bytesPerRow, CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                         CGDataProviderRef provider, const CGFloat decode[], bool shouldInterpolate,
                         CGColorRenderingIntent intent);
void CGImageRelease(CGImageRef image);
}
