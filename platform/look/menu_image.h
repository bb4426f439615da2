// Images of items as cairo surfaces at the size in pixels at which they are shown. Main thread.
#pragma once

#include <cairo.h>

#include <unordered_map>
#include <vector>

@class NSBitmapImageRep, NSImage;

// Keeps the surfaces that it makes while a menu is open, up to a limit.
class ImageCache {
  public:
    ImageCache() = default;
    ~ImageCache();
    ImageCache(const ImageCache&) = delete;
    ImageCache& operator=(const ImageCache&) = delete;

    // Null for an image without pixels. Belongs to the cache, until the next call.
    cairo_surface_t* surface(NSImage* image, int width, int height);
    // Call this when the image has new pixels.
    void forget(NSImage* image);
    void clear();

  private:
    struct Picture {
        NSBitmapImageRep* bitmap;  // retained
        int width, height;
        cairo_surface_t* surface;
    };

    cairo_surface_t* picture(NSImage* image, int width, int height);
    void clear_pictures();

    std::unordered_map<NSImage*, cairo_surface_t*> surfaces_;  // images are retained
    std::vector<Picture> pictures_;                            // the last ones
};
