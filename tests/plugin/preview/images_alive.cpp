#include "plugin/preview/images_alive.h"

#include <CoreGraphics/CoreGraphics.h>
#include <dlfcn.h>

#include <atomic>

namespace {

std::atomic<int> alive;

}  // namespace

int test::images_alive() { return alive; }

extern "C" {

CGImageRef CGImageCreate(size_t width, size_t height, size_t component_bits, size_t pixel_bits,
                         size_t row_bytes, CGColorSpaceRef space, CGBitmapInfo info,
                         CGDataProviderRef provider, const CGFloat* decode, bool interpolate,
                         CGColorRenderingIntent intent) {
    static auto* next =
        reinterpret_cast<decltype(&CGImageCreate)>(dlsym(RTLD_NEXT, "CGImageCreate"));
    CGImageRef image = next(width, height, component_bits, pixel_bits, row_bytes, space, info,
                            provider, decode, interpolate, intent);
    if (image) alive++;
    return image;
}

void CGImageRelease(CGImageRef image) {
    static auto* next =
        reinterpret_cast<decltype(&CGImageRelease)>(dlsym(RTLD_NEXT, "CGImageRelease"));
    if (image) alive--;
    next(image);
}

}  // extern "C"
