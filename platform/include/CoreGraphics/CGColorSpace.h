// Colour spaces: there is one, the device's red, green and blue. Any thread.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

typedef struct CGColorSpace* CGColorSpaceRef;

CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void);
CGColorSpaceRef CGColorSpaceRetain(CGColorSpaceRef space);
// Null is ignored.
void CGColorSpaceRelease(CGColorSpaceRef space);

#ifdef __cplusplus
}
#endif
