#include "look/menu_image.h"

#include <AppKit/AppKit.h>
#include <math.h>

#include <algorithm>

namespace {

const size_t most_surfaces = 600, most_pictures = 32;

struct Pixel {
    unsigned red, green, blue, alpha;
};

uint32_t premultiplied(const Pixel& p) {
    const auto share = [&p](unsigned c) { return (c * p.alpha + 127) / 255; };
    return p.alpha << 24 | share(p.red) << 16 | share(p.green) << 8 | share(p.blue);
}

// The smallest picture that need not be enlarged, else the largest.
NSBitmapImageRep* best_bitmap(NSImage* image, int width) {
    NSBitmapImageRep* best = nil;
    for (NSImageRep* rep in [image representations]) {
        if (![rep isKindOfClass:[NSBitmapImageRep class]]) continue;
        const bool enough = best && [best pixelsWide] >= width;
        const bool better =
            !best || (enough ? [rep pixelsWide] >= width && [rep pixelsWide] < [best pixelsWide]
                             : [rep pixelsWide] > [best pixelsWide]);
        if (better) best = static_cast<NSBitmapImageRep*>(rep);
    }
    if (best) return best;
    // This serves drawn images, and formats that only draw themselves.
    return [NSBitmapImageRep imageRepWithData:[image TIFFRepresentation]];
}

bool is_plain(NSBitmapImageRep* rep) {
    return [rep bitsPerSample] == 8 && ![rep isPlanar] &&
           ([rep samplesPerPixel] == 4 || [rep samplesPerPixel] == 3);
}

void copy_row(NSBitmapImageRep* rep, const unsigned char* from, uint32_t* to) {
    const NSInteger samples = [rep samplesPerPixel], width = [rep pixelsWide];
    const NSInteger step = [rep bitsPerPixel] / 8;
    const NSBitmapFormat format = [rep bitmapFormat];
    const bool first = samples == 4 && (format & NSAlphaFirstBitmapFormat);
    const bool loose = format & NSAlphaNonpremultipliedBitmapFormat;
    for (NSInteger x = 0; x < width; x++, from += step) {
        const unsigned char* color = first ? from + 1 : from;
        Pixel p = {color[0], color[1], color[2], 255};
        if (samples == 4) p.alpha = first ? from[0] : from[3];
        to[x] = loose ? premultiplied(p) : p.alpha << 24 | p.red << 16 | p.green << 8 | p.blue;
    }
}

void copy_row_by_color(NSBitmapImageRep* rep, NSInteger y, uint32_t* to) {
    for (NSInteger x = 0; x < [rep pixelsWide]; x++) {
        NSColor* color = [[rep colorAtX:x y:y] colorUsingColorSpaceName:NSDeviceRGBColorSpace];
        const auto byte = [](double share) { return static_cast<unsigned>(lround(share * 255)); };
        const Pixel p = {byte([color redComponent]), byte([color greenComponent]),
                         byte([color blueComponent]), byte([color alphaComponent])};
        to[x] = color ? premultiplied(p) : 0;
    }
}

cairo_surface_t* whole_surface(NSBitmapImageRep* rep) {
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, [rep pixelsWide], [rep pixelsHigh]);
    unsigned char* pixels = cairo_image_surface_get_data(surface);
    if (!pixels) return surface;
    const int stride = cairo_image_surface_get_stride(surface);
    const bool plain = is_plain(rep) && [rep bitmapData];
    for (NSInteger y = 0; y < [rep pixelsHigh]; y++) {
        uint32_t* to = reinterpret_cast<uint32_t*>(pixels + y * stride);
        if (plain) {
            copy_row(rep, [rep bitmapData] + y * [rep bytesPerRow], to);
        } else {
            copy_row_by_color(rep, y, to);
        }
    }
    cairo_surface_mark_dirty(surface);
    return surface;
}

cairo_surface_t* scaled_surface(cairo_surface_t* whole, int width, int height) {
    const int from_width = cairo_image_surface_get_width(whole);
    const int from_height = cairo_image_surface_get_height(whole);
    if (from_width == width && from_height == height) return cairo_surface_reference(whole);
    cairo_surface_t* scaled = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cairo_t* cairo = cairo_create(scaled);
    cairo_scale(cairo, double(width) / from_width, double(height) / from_height);
    cairo_set_source_surface(cairo, whole, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_BEST);
    cairo_pattern_set_extend(cairo_get_source(cairo), CAIRO_EXTEND_PAD);
    cairo_paint(cairo);
    cairo_destroy(cairo);
    return scaled;
}

cairo_surface_t* make_surface(NSBitmapImageRep* rep, int width, int height) {
    cairo_surface_t* whole = whole_surface(rep);
    cairo_surface_t* scaled = scaled_surface(whole, width, height);
    cairo_surface_destroy(whole);
    return scaled;
}

}  // namespace

ImageCache::~ImageCache() { clear(); }

void ImageCache::clear() {
    for (const auto& entry : surfaces_) {
        [entry.first release];
        cairo_surface_destroy(entry.second);
    }
    surfaces_.clear();
    clear_pictures();
}

void ImageCache::clear_pictures() {
    for (const Picture& picture : pictures_) {
        [picture.bitmap release];
        cairo_surface_destroy(picture.surface);
    }
    pictures_.clear();
}

// Icons of one kind of file share their bitmaps.
cairo_surface_t* ImageCache::picture(NSImage* image, int width, int height) {
    NSBitmapImageRep* const bitmap = best_bitmap(image, width);
    if (!bitmap || [bitmap pixelsWide] <= 0 || [bitmap pixelsHigh] <= 0) return nullptr;
    for (const Picture& picture : pictures_) {
        if (picture.bitmap == bitmap && picture.width == width && picture.height == height) {
            return cairo_surface_reference(picture.surface);
        }
    }
    cairo_surface_t* const made = make_surface(bitmap, width, height);
    if (pictures_.size() == most_pictures) clear_pictures();
    pictures_.push_back({[bitmap retain], width, height, cairo_surface_reference(made)});
    return made;
}

// The image's bitmaps may have new pixels, too.
void ImageCache::forget(NSImage* image) {
    clear_pictures();
    const auto found = surfaces_.find(image);
    if (found == surfaces_.end()) return;
    cairo_surface_destroy(found->second);
    surfaces_.erase(found);
    [image release];
}

cairo_surface_t* ImageCache::surface(NSImage* image, int width, int height) {
    if (!image || width <= 0 || height <= 0) return nullptr;
    const auto found = surfaces_.find(image);
    if (found != surfaces_.end()) return found->second;
    cairo_surface_t* made = picture(image, width, height);
    if (!made) return nullptr;
    if (surfaces_.size() >= most_surfaces) clear();
    surfaces_[[image retain]] = made;
    return made;
}
