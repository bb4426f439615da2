#include <QuickLook/QuickLook.h>

#include <Foundation/Foundation.h>
#include <math.h>

#include <memory>
#include <string>

#include "coregraphics/image.h"
#include "quicklook/thumbnail_maker.h"

using thumbnails::Box;
using thumbnails::Picture;

static const double largest_side = 2048;

// The path of a file's address; empty for any other address.
static std::string file_path(NSURL* url) {
    if (![url isFileURL]) return {};
    const char* path = [[url path] fileSystemRepresentation];
    return path && path[0] == '/' ? path : "";
}

static bool find_box(CGSize size, double scale, Box* box) {
    if (!(size.width >= 1 && size.height >= 1)) return false;
    box->width = static_cast<int>(fmin(size.width * scale, largest_side));
    box->height = static_cast<int>(fmin(size.height * scale, largest_side));
    return true;
}

// On a finer screen a picture has the same size as on any other, but more pixels if the file has
// them.
static double scale_within(const Picture& picture, CGSize size) {
    return fmax(1, fmax(picture.width / size.width, picture.height / size.height));
}

static void delete_picture(void* picture, const void*, size_t) {
    delete static_cast<Picture*>(picture);
}

static CGImageRef create_image_of(Picture picture) {
    auto* kept = new Picture(std::move(picture));
    const auto width = static_cast<size_t>(kept->width), height = static_cast<size_t>(kept->height);
    CGDataProviderRef pixels = CGDataProviderCreateWithData(kept, kept->pixels.data(),
                                                            kept->pixels.size(), delete_picture);
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGImageRef image = CGImageCreate(width, height, 8, 32, width * 4, space, kCGImageAlphaLast,
                                     pixels, nullptr, true, kCGRenderingIntentDefault);
    CGColorSpaceRelease(space);
    CGDataProviderRelease(pixels);
    return image;
}

CGImageRef QLThumbnailImageCreate(CFAllocatorRef, CFURLRef url, CGSize maxThumbnailSize,
                                  CFDictionaryRef) {
    @autoreleasepool {
        Box box;
        const std::string path = file_path((NSURL*)url);
        const double finer = fmax(1, display_scale());
        if (path.empty() || !find_box(maxThumbnailSize, finer, &box)) return nullptr;
        Picture picture =
            thumbnails::shared_thumbnail_maker().make(path, box, {finer, is_display_dark()});
        if (!picture) return nullptr;
        const double scale = scale_within(picture, maxThumbnailSize);
        CGImageRef image = create_image_of(std::move(picture));
        if (!image) return nullptr;
        set_image_scale(image, scale);
        set_image_source(image, path);
        return image;
    }
}
