// Bitmaps of eight bits for each of red, green, blue and alpha, in this order.
#pragma once

#include <AppKit/AppKit.h>

#include <functional>

struct _cairo;

// With undefined pixels, in rows of 4 * width bytes; autoreleased. Colours are multiplied by alpha
// unless `format` is NSAlphaNonpremultipliedBitmapFormat.
NSBitmapImageRep* make_bitmap(int width, int height, NSBitmapFormat format = {});

// Draws into a bitmap and puts it where `area` is, of the view that has the focus of drawing. Its
// coordinates are that view's, which is flipped; of drawing contexts only this one's are the same
// with every back end.
void draw_through_bitmap(NSRect area, const std::function<void(_cairo*)>& draw);
