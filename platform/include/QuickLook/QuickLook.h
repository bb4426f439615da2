// Quick Look, as far as Delvio uses it: the picture of a file.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CGGeometry.h>
#include <CoreGraphics/CGImage.h>

#ifdef __cplusplus
extern "C" {
#endif

// A picture of the file, as large as fits `maxThumbnailSize` points but never enlarged, in pixels
// of the screen that menus are shown on; at most 2048 pixels a side. Null for folders and anything
// else that is no plain file, for plain text of any kind, for types that nothing installed can
// show, and for files that are damaged or take too long. The caller releases the image.
//
// The picture comes from the desktop's thumbnail cache; else from gdk-pixbuf, poppler or the
// desktop's thumbnailer programs, each in a process of its own that has little memory, little time
// and no network. A new picture is put into the cache.
//
// Any thread but the main one, several at once. A call holds its thread until it has its answer:
// half a minute at most once it has its turn. Few files are decoded at the same time, and the
// newest call has the next turn. So a pool of threads that make these calls should be large, or
// should start its newest work first. `options` is ignored.
CGImageRef QLThumbnailImageCreate(CFAllocatorRef allocator, CFURLRef url, CGSize maxThumbnailSize,
                                  CFDictionaryRef options);

#ifdef __cplusplus
}
#endif
