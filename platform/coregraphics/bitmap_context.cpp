#include "coregraphics/bitmap_context.h"

#include <CoreGraphics/CGBitmapContext.h>
#include <string.h>

#include <algorithm>
#include <cmath>
#include <mutex>

#include "coregraphics/image.h"

namespace {

// cairo's limit.
constexpr size_t longest_side = 32767;

// Converts between the Mac's bytes alpha, red, green, blue and cairo's pixels, which are whole
// words.
uint32_t swapped(uint32_t pixel) {
    if constexpr (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__) return pixel;
    return pixel << 24 | (pixel & 0xff00) << 8 | (pixel >> 8 & 0xff00) | pixel >> 24;
}

void copy_swapped(const uint8_t* from, uint8_t* to, int count) {
    for (int i = 0; i < count; i++) {
        uint32_t pixel;
        memcpy(&pixel, from + i * 4, 4);
        pixel = swapped(pixel);
        memcpy(to + i * 4, &pixel, 4);
    }
}

struct Pixels {
    unsigned char* data;
    int width, height, stride;
};

Pixels pixels_of(CGContextRef context) {
    cairo_surface_t* surface = cairo_get_target(context->cairo);
    cairo_surface_flush(surface);
    return {cairo_image_surface_get_data(surface), cairo_image_surface_get_width(surface),
            cairo_image_surface_get_height(surface), cairo_image_surface_get_stride(surface)};
}

void load_bitmap(CGContextRef context) {
    const Pixels pixels = pixels_of(context);
    for (int y = 0; y < pixels.height; y++) {
        copy_swapped(context->bitmap.data + y * context->bitmap.bytes_per_row,
                     pixels.data + y * pixels.stride, pixels.width);
    }
    cairo_surface_mark_dirty(cairo_get_target(context->cairo));
}

int bounded(double value, int limit) {
    return static_cast<int>(std::max(0.0, std::min(value, double(limit))));
}

// Guards the contexts that have a finer one; images may be made on any thread.
std::mutex finer_lock;
std::vector<CGContextRef>& with_finer() {
    static auto* contexts = new std::vector<CGContextRef>;
    return *contexts;
}

CGContextRef new_bitmap_context(size_t width, size_t height, double scale) {
    cairo_surface_t* surface = cairo_image_surface_create(
        CAIRO_FORMAT_ARGB32, static_cast<int>(width), static_cast<int>(height));
    cairo_t* cairo = cairo_create(surface);
    cairo_surface_destroy(surface);
    CGContextRef context = nullptr;
    if (cairo_status(cairo) == CAIRO_STATUS_SUCCESS) {
        cairo_matrix_t matrix;
        cairo_matrix_init(&matrix, scale, 0, 0, -scale, 0, static_cast<double>(height));
        context = new_context(cairo, matrix);
        context->scale = scale;
    }
    cairo_destroy(cairo);
    return context;
}

// The finer context starts with what the caller's memory holds.
void add_finer(CGContextRef context, size_t width, size_t height, double scale) {
    const auto grown = [scale](size_t side) {
        return static_cast<size_t>(std::lround(static_cast<double>(side) * scale));
    };
    if (scale <= 1 || std::max(grown(width), grown(height)) > longest_side) return;
    context->finer = new_bitmap_context(grown(width), grown(height), scale);
    if (!context->finer) return;
    cairo_t* cairo = context->finer->cairo;
    cairo_save(cairo);
    cairo_scale(cairo, scale, scale);
    cairo_set_source_surface(cairo, cairo_get_target(context->cairo), 0, 0);
    cairo_paint(cairo);
    cairo_restore(cairo);
    const std::lock_guard<std::mutex> guard(finer_lock);
    with_finer().push_back(context);
}

// From cairo's pixels.
void copy_bytes(const Pixels& pixels, uint8_t* to) {
    for (int y = 0; y < pixels.height; y++) {
        for (int x = 0; x < pixels.width; x++, to += 4) {
            uint32_t pixel;
            memcpy(&pixel, pixels.data + y * pixels.stride + x * 4, 4);
            to[0] = static_cast<uint8_t>(pixel >> 16);
            to[1] = static_cast<uint8_t>(pixel >> 8);
            to[2] = static_cast<uint8_t>(pixel);
            to[3] = static_cast<uint8_t>(pixel >> 24);
        }
    }
}

}  // namespace

bool copy_finer_pixels(const uint8_t* memory, size_t width, size_t height, FinerPixels* pixels) {
    const std::lock_guard<std::mutex> guard(finer_lock);
    for (CGContextRef context : with_finer()) {
        const Pixels own = pixels_of(context);
        if (context->bitmap.data != memory || static_cast<size_t>(own.width) != width ||
            static_cast<size_t>(own.height) != height) {
            continue;
        }
        const Pixels finer = pixels_of(context->finer);
        pixels->width = static_cast<size_t>(finer.width);
        pixels->height = static_cast<size_t>(finer.height);
        pixels->scale = context->finer->scale;
        pixels->bytes.resize(pixels->width * pixels->height * 4);
        copy_bytes(finer, pixels->bytes.data());
        return true;
    }
    return false;
}

void forget_bitmap(CGContextRef context) {
    if (!context->finer) return;
    const std::lock_guard<std::mutex> guard(finer_lock);
    std::erase(with_finer(), context);
}

void store_bitmap(CGContextRef context, const Extents& extents) {
    const Pixels pixels = pixels_of(context);
    const int left = bounded(std::floor(extents.left), pixels.width);
    const int right = bounded(std::ceil(extents.right), pixels.width);
    const int bottom = bounded(std::ceil(extents.bottom), pixels.height);
    for (int y = bounded(std::floor(extents.top), pixels.height); y < bottom; y++) {
        copy_swapped(pixels.data + y * pixels.stride + left * 4,
                     context->bitmap.data + y * context->bitmap.bytes_per_row + left * 4,
                     std::max(0, right - left));
    }
}

CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bytesPerRow, CGColorSpaceRef space,
                                   CGBitmapInfo bitmapInfo) {
    if (!data || !space || bitsPerComponent != 8) return nullptr;
    if (bitmapInfo != kCGImageAlphaPremultipliedFirst) return nullptr;
    if (width == 0 || height == 0 || width > longest_side || height > longest_side) return nullptr;
    if (bytesPerRow / 4 < width) return nullptr;
    CGContextRef context = new_bitmap_context(width, height, 1);
    if (!context) return nullptr;
    context->bitmap = {static_cast<uint8_t*>(data), bytesPerRow};
    load_bitmap(context);
    add_finer(context, width, height, display_scale());
    return context;  // NOLINT(clang-analyzer-osx.cocoa.RetainCount): a new one has one owner
}
