// Decodes the pictures of icons that files name and that nobody vouches for: one by one in helper
// processes, as thumbnails are, and on threads of its own, so that nobody waits for them. Any
// thread.
#pragma once

#include <stdint.h>

#include <functional>
#include <optional>
#include <string>

#include "quicklook/picture.h"

namespace thumbnails {

// The state of a file that was looked at; all zero means none.
struct IconStamp {
    uint64_t device = 0, inode = 0;
    int64_t modified = 0, size = 0;  // in nanoseconds, in bytes
    bool operator==(const IconStamp& other) const = default;
};

struct DecodedIcon {
    IconStamp stamp;  // all zero: no file that is looked into
    Picture picture;  // none for what is no image, too large, too slow, or known by its stamp
};

using IconDone = std::function<void(const std::optional<DecodedIcon>& icon)>;

// Calls `done` once, on a thread of its own. It gets nothing when too many requests waited, or when
// the icons of the file's folder have taken too long already. A file that still has the stamp
// `known` is not decoded again. The newest request is served next.
void decode_icon(const std::string& path, int side, const IconStamp& known, IconDone done);

}  // namespace thumbnails
