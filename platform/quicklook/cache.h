// The desktop's thumbnail cache, shared with its file managers: XDG_CACHE_HOME/thumbnails. Any
// thread.
#pragma once

#include <stdint.h>

#include <string>

#include "quicklook/picture.h"

namespace thumbnails {

// The file whose thumbnail is meant, in the state in which it was looked at.
struct Subject {
    std::string path;      // absolute
    int64_t modified = 0;  // seconds
    int64_t size = 0;
};

// A thumbnail that fits the box and is as large as the box, or the file's own picture, allows.
// Empty when the cache holds none of this state of the file.
Picture cached_picture(const Subject& subject, Box box);

// The box for making a picture that serves both a request of `box` and the cache.
Box cache_box(Box box);

struct Origin {
    std::string type;           // content type
    int width = 0, height = 0;  // of the file's own picture; 0 when it has none
};

// Stores a picture that was made with cache_box(). Does nothing for the cache's own files.
void store_picture(const Subject& subject, const Picture& picture, Box box, const Origin& origin);

// These ask and note that this state of the file cannot be shown, so that nobody tries again.
// Installing a thumbnailer later voids the note.
bool has_failed(const Subject& subject);
void store_failure(const Subject& subject);

bool is_in_cache(const std::string& path);

}  // namespace thumbnails
