#include "appkit/bitmaps.h"

NSBitmapImageRep* make_bitmap(int width, int height, NSBitmapFormat format) {
    return [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                                    pixelsWide:width
                                                    pixelsHigh:height
                                                 bitsPerSample:8
                                               samplesPerPixel:4
                                                      hasAlpha:YES
                                                      isPlanar:NO
                                                colorSpaceName:NSDeviceRGBColorSpace
                                                  bitmapFormat:format
                                                   bytesPerRow:width * 4
                                                  bitsPerPixel:32] autorelease];
}
