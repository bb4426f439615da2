// A drawing context over cairo. It keeps its own state: each drawing call sets cairo's state and
// restores it afterwards, so a context may share a cairo context with others.
#pragma once

#include <CoreGraphics/CGContext.h>
#include <cairo.h>
#include <stdint.h>

#include <vector>

#include "coregraphics/counted.h"

struct DrawingFont;

struct DrawingColor {
    double red = 0, green = 0, blue = 0, alpha = 1;
};

struct DrawingState {
    cairo_matrix_t matrix;  // from the user's space to cairo's
    DrawingColor fill, stroke;
    bool antialias = true;
    const DrawingFont* font = nullptr;
    double font_size = 0;
    double character_spacing = 0;
    CGTextDrawingMode text_mode = kCGTextFill;
};

// The caller's memory behind a bitmap context, in the Mac's order of bytes; cairo draws into a
// surface of its own.
struct BitmapTarget {
    uint8_t* data = nullptr;
    size_t bytes_per_row = 0;
};

// An area of cairo's device space; empty when its right is not right of its left.
struct Extents {
    double left = 0, top = 0, right = 0, bottom = 0;

    bool is_empty() const { return right <= left || bottom <= top; }
};

struct CGContext : Counted {
    cairo_t* cairo = nullptr;  // owned
    BitmapTarget bitmap;
    DrawingState state;
    std::vector<DrawingState> saved;
    Extents unstored;  // drawn, but not yet in the caller's memory
    // Everything that is drawn is also drawn here, in the pixels of a finer screen. Owned; null
    // when the screen is not finer.
    CGContext* finer = nullptr;
    double scale = 1;  // of a finer one: its pixels for one of the caller's

    ~CGContext();
};

// Makes a context that draws with `cairo`, which it shares. `matrix` leads from the context's space
// to cairo's.
CGContextRef new_context(cairo_t* cairo, const cairo_matrix_t& matrix);

// Repeats a call on the finer context, if there is one.
template <typename... arguments, typename... given>
void repeat_finer(CGContext* context, void (*call)(CGContext*, arguments...), given... values) {
    if (context && context->finer) call(context->finer, values...);
}

// Call these around the cairo calls of one drawing call. `extents`, in cairo's device space, is the
// area that these calls may have changed.
void begin_drawing(CGContextRef context, const DrawingColor& color);
void end_drawing(CGContextRef context, const Extents& extents);
