#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

extern "C" CGImageRef QLThumbnailImageCreate(CFAllocatorRef allocator, CFURLRef url,
                                             CGSize maxThumbnailSize, CFDictionaryRef options);
