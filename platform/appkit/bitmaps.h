// Bitmaps of eight bits for each of red, green, blue and alpha, in this order.
#pragma once

#include <AppKit/AppKit.h>

// With undefined pixels, in rows of 4 * width bytes; autoreleased. Colours are multiplied by alpha
// unless `format` is NSAlphaNonpremultipliedBitmapFormat.
NSBitmapImageRep* make_bitmap(int width, int height, NSBitmapFormat format = {});
