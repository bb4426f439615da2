#include "coregraphics/image.h"

#include <string.h>

#include <atomic>

#include "coregraphics/bitmap_context.h"
#include "coregraphics/counted.h"
#include "coregraphics/data_provider.h"

namespace {

// Where a pixel's components stand, in bytes; no alpha: -1.
struct PixelFormat {
    CGBitmapInfo info;
    size_t bytes;
    int color;  // red; green and blue follow
    int alpha;
    bool premultiplied;
};

const PixelFormat formats[] = {
    {kCGImageAlphaNone, 3, 0, -1, true},
    {kCGImageAlphaPremultipliedLast, 4, 0, 3, true},
    {kCGImageAlphaPremultipliedFirst, 4, 1, 0, true},
    {kCGImageAlphaLast, 4, 0, 3, false},
    {kCGImageAlphaFirst, 4, 1, 0, false},
    {kCGImageAlphaNoneSkipLast, 4, 0, -1, true},
    {kCGImageAlphaNoneSkipFirst, 4, 1, -1, true},
};

const PixelFormat* find_format(CGBitmapInfo info, size_t bits_per_pixel) {
    for (const PixelFormat& format : formats) {
        if (format.info == info && format.bytes * 8 == bits_per_pixel) return &format;
    }
    return nullptr;
}

void copy_pixel(const PixelFormat& format, const uint8_t* from, uint8_t* to) {
    const unsigned alpha = format.alpha < 0 ? 255 : from[format.alpha];
    const uint8_t* color = from + format.color;
    for (int i = 0; i < 3; i++) {
        to[i] =
            format.premultiplied ? color[i] : static_cast<uint8_t>((color[i] * alpha + 127) / 255);
    }
    to[3] = static_cast<uint8_t>(alpha);
}

std::atomic<double> scale_of_display = 1;
std::atomic<bool> is_dark_display = false;

}  // namespace

struct CGImage : Counted {
    size_t width = 0, height = 0, bytes_per_row = 0;
    const PixelFormat* format = nullptr;
    CGDataProviderRef provider = nullptr;  // owned
    double scale = 1;
    std::string source;
    // Used instead of what the provider serves: a bitmap context's drawing for a finer screen.
    std::vector<uint8_t> finer;

    ~CGImage() { CGDataProviderRelease(provider); }
};

// An image of a bitmap context's memory takes the pixels for the screen that shows it.
static void take_finer_pixels(CGImageRef image) {
    if (display_scale() <= 1) return;
    FinerPixels pixels;
    const ProvidedBytes bytes(image->provider, image->bytes_per_row * image->height);
    if (!copy_finer_pixels(bytes.data(), image->width, image->height, &pixels)) return;
    image->width = pixels.width;
    image->height = pixels.height;
    image->scale = pixels.scale;
    image->finer = std::move(pixels.bytes);
}

CGImageRef CGImageCreate(size_t width, size_t height, size_t bitsPerComponent, size_t bitsPerPixel,
                         size_t bytesPerRow, CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                         CGDataProviderRef provider, const CGFloat* decode, bool,
                         CGColorRenderingIntent) {
    const PixelFormat* format = find_format(bitmapInfo, bitsPerPixel);
    if (!format || bitsPerComponent != 8 || !space || !provider || decode) return nullptr;
    if (width == 0 || height == 0 || bytesPerRow / format->bytes < width) return nullptr;
    auto* image = new CGImage;
    image->width = width;
    image->height = height;
    image->bytes_per_row = bytesPerRow;
    image->format = format;
    image->provider = CGDataProviderRetain(provider);
    take_finer_pixels(image);
    return image;
}

CGImageRef CGImageRetain(CGImageRef image) { return retained(image); }

void CGImageRelease(CGImageRef image) { release(image); }

size_t CGImageGetWidth(CGImageRef image) { return image ? image->width : 0; }

size_t CGImageGetHeight(CGImageRef image) { return image ? image->height : 0; }

void copy_image_pixels(CGImageRef image, uint8_t* pixels, size_t bytes_per_row) {
    for (size_t y = 0; y < image->height && !image->finer.empty(); y++) {
        memcpy(pixels + y * bytes_per_row, &image->finer[y * image->width * 4], image->width * 4);
    }
    if (!image->finer.empty()) return;
    const ProvidedBytes bytes(image->provider, image->bytes_per_row * image->height);
    const size_t row_size = image->width * image->format->bytes;
    for (size_t y = 0; y < image->height; y++) {
        uint8_t* to = pixels + y * bytes_per_row;
        const size_t start = y * image->bytes_per_row;
        if (start + row_size > bytes.size()) {
            memset(to, 0, image->width * 4);
            continue;
        }
        const uint8_t* from = bytes.data() + start;
        for (size_t x = 0; x < image->width; x++) {
            copy_pixel(*image->format, from + x * image->format->bytes, to + x * 4);
        }
    }
}

void set_display_scale(double scale) { scale_of_display = scale; }

double display_scale() { return scale_of_display; }

void set_display_is_dark(bool is_dark) { is_dark_display = is_dark; }

bool is_display_dark() { return is_dark_display; }

void set_image_scale(CGImageRef image, double scale) { image->scale = scale; }

double image_scale(CGImageRef image) { return image ? image->scale : 1; }

void set_image_source(CGImageRef image, const std::string& path) { image->source = path; }

std::string image_source(CGImageRef image) { return image ? image->source : ""; }
