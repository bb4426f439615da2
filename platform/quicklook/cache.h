// The desktop's thumbnail cache, shared with its file managers: XDG_CACHE_HOME/thumbnails. Any
// thread.
#pragma once

#include <stdint.h>

#include <string>

#include "quicklook/picture.h"

namespace thumbnails {

// The file whose thumbnail is meant, as it was when it was looked at.
struct Subject {
    std::string path;      // absolute
    int64_t modified = 0;  // seconds
    int64_t size = 0;
};

// A thumbnail that fits the box and is as large as it allows, or as the file's picture is. Empty
// when the cache holds none of this state of the file.
Picture cached_picture(const Subject& subject, Box box);

// The box with which to make a picture that serves a request of `box` and the cache.
Box cache_box(Box box);

struct Origin {
    std::string type;           // content type
    int width = 0, height = 0;  // of the file's own picture; 0 when it has none
};

// Puts in a picture that was made with cache_box(). Ignored for files of the cache itself.
void store_picture(const Subject& subject, const Picture& picture, Box box, const Origin& origin);

// That this state of the file cannot be shown, so that nobody tries again. A thumbnailer that is
// installed later makes it void.
bool has_failed(const Subject& subject);
void store_failure(const Subject& subject);

bool is_in_cache(const std::string& path);

}  // namespace thumbnails
