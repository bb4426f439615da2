#include <CoreGraphics/CGColorSpace.h>

// Nothing in it differs, so all share one, and owning it costs nothing.
struct CGColorSpace {};

CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void) {
    static CGColorSpace device;
    return &device;
}

CGColorSpaceRef CGColorSpaceRetain(CGColorSpaceRef space) { return space; }

void CGColorSpaceRelease(CGColorSpaceRef) {}
