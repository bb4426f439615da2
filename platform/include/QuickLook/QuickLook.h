// Quick Look, as far as Delvio uses it: the picture of a file.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CGGeometry.h>
#include <CoreGraphics/CGImage.h>

#ifdef __cplusplus
extern "C" {
#endif

// A picture of the file, as large as fits `maxThumbnailSize` points but never enlarged, in pixels
// of the screen that menus are shown on; at most 2048 pixels a side. Null for what has none:
// folders and all that is no plain file, plain text of any kind, what nothing installed can show,
// what is damaged or takes too long. The caller releases the image.
//
// Behind it: the desktop's thumbnail cache, then gdk-pixbuf, poppler and the desktop's thumbnailer
// programs, in processes of their own that have little memory, little time and no network. A new
// picture is put into the cache.
//
// Any thread but the main one, several at once. A call holds its thread until it has its answer,
// half a minute at most once it is its turn; few files are decoded at the same time, and the newest
// call has the next turn. So a pool of threads that callers run on should have many, or
// should start its newest work first. `options` is ignored.
CGImageRef QLThumbnailImageCreate(CFAllocatorRef allocator, CFURLRef url, CGSize maxThumbnailSize,
                                  CFDictionaryRef options);

#ifdef __cplusplus
}
#endif
