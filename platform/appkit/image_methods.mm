// NSImage from Core Graphics' pictures.
#include <AppKit/AppKit.h>

#include "coregraphics/image.h"
#include "look/bitmaps.h"

@implementation NSImage (CoreGraphics)

- (instancetype)initWithCGImage:(CGImageRef)image size:(NSSize)size {
    const int width = static_cast<int>(CGImageGetWidth(image));
    const int height = static_cast<int>(CGImageGetHeight(image));
    const bool own_size = NSEqualSizes(size, NSZeroSize);
    const double scale = image_scale(image);
    self = [self initWithSize:own_size ? NSMakeSize(width / scale, height / scale) : size];
    NSBitmapImageRep* bitmap = self && image ? make_bitmap(width, height) : nil;
    if (!bitmap) {
        [self release];
        return nil;
    }
    copy_image_pixels(image, [bitmap bitmapData], [bitmap bytesPerRow]);
    [bitmap setSize:[self size]];
    [self addRepresentation:bitmap];
    return self;
}

@end
