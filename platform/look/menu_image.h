// Images of items as cairo surfaces at the size in pixels at which they are shown. Main thread.
#pragma once

#include <cairo.h>

#include <unordered_map>

@class NSImage;

// Keeps the surfaces that it makes while a menu is open, up to a limit.
class image_cache_t {
  public:
    image_cache_t() = default;
    ~image_cache_t();
    image_cache_t(const image_cache_t&) = delete;
    image_cache_t& operator=(const image_cache_t&) = delete;

    // Null for an image without pixels. Belongs to the cache, until the next call.
    cairo_surface_t* surface(NSImage* image, int width, int height);
    // Call this when the image has new pixels.
    void forget(NSImage* image);
    void clear();

  private:
    std::unordered_map<NSImage*, cairo_surface_t*> surfaces_;  // images are retained
};
