#include "look/bitmaps.h"

#include <cairo.h>

NSBitmapImageRep* make_bitmap(int width, int height, NSBitmapFormat format) {
    return [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
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

namespace {

// Cairo's pixels are words of alpha, red, green and blue. A flipped view turns a bitmap upside
// down, so it is turned upside down here first.
void copy_pixels(cairo_surface_t* surface, int width, int height, NSBitmapImageRep* rep) {
    cairo_surface_flush(surface);
    for (int y = 0; y < height; y++) {
        const unsigned char* from =
            cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface);
        unsigned char* to = [rep bitmapData] + (height - 1 - y) * [rep bytesPerRow];
        for (int x = 0; x < width; x++, from += 4, to += 4) {
            to[0] = from[2], to[1] = from[1], to[2] = from[0], to[3] = from[3];
        }
    }
}

}  // namespace

void draw_through_bitmap(NSRect area, const std::function<void(_cairo*)>& draw) {
    const int width = static_cast<int>(NSWidth(area)), height = static_cast<int>(NSHeight(area));
    NSBitmapImageRep* rep = make_bitmap(width, height);
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cairo_t* cairo = cairo_create(surface);
    cairo_translate(cairo, -NSMinX(area), -NSMinY(area));
    draw(cairo);
    // There is no picture of an area that is too large, and a window has that size if another
    // program says so.
    const bool is_drawn = cairo_status(cairo) == CAIRO_STATUS_SUCCESS && [rep bitmapData];
    cairo_destroy(cairo);
    if (is_drawn) copy_pixels(surface, width, height, rep);
    cairo_surface_destroy(surface);
    if (is_drawn) [rep drawInRect:area];
}
