// Bitmaps of eight bits for each of red, green, blue and alpha, in this order.
#pragma once

#include <AppKit/AppKit.h>

#include <functional>

struct _cairo;

// A bitmap with undefined pixels, in rows of 4 * width bytes; autoreleased. Colours are multiplied
// by alpha unless `format` is NSAlphaNonpremultipliedBitmapFormat.
NSBitmapImageRep* make_bitmap(int width, int height, NSBitmapFormat format = {});

// Draws into a bitmap and puts the bitmap at `area` of the view that has the drawing focus. `draw`
// uses the coordinates of that view, which is flipped; no other drawing context has the same
// coordinates with every back end.
void draw_through_bitmap(NSRect area, const std::function<void(_cairo*)>& draw);
