#include <CoreGraphics/CGColorSpace.h>

// All colour spaces are the same, so all callers share one, and owning it costs nothing.
struct CGColorSpace {};

CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void) {
    static CGColorSpace device;
    return &device;
}

CGColorSpaceRef CGColorSpaceRetain(CGColorSpaceRef space) { return space; }

void CGColorSpaceRelease(CGColorSpaceRef) {}
