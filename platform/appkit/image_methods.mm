// NSImage from Core Graphics' pictures.
#include <AppKit/AppKit.h>

#include "appkit/image_source.h"
#include "coregraphics/image.h"
#include "look/bitmaps.h"

static NSString* const source_key = @"DelvioSource";

std::string source_of_image(NSImage* image) {
    for (NSImageRep* each in [image representations]) {
        if (![each isKindOfClass:[NSBitmapImageRep class]]) continue;
        NSString* path = [static_cast<NSBitmapImageRep*>(each) valueForProperty:source_key];
        const char* bytes = path ? [path fileSystemRepresentation] : nullptr;
        if (bytes) return bytes;
    }
    return {};
}

// A name that is no text stays unknown.
static void note_source(NSBitmapImageRep* bitmap, const std::string& path) {
    NSString* text = path.empty() ? nil : [NSString stringWithUTF8String:path.c_str()];
    if (text) [bitmap setProperty:source_key withValue:text];
}

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
    note_source(bitmap, image_source(image));
    [self addRepresentation:bitmap];
    return self;
}

@end
