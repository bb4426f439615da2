// Fonts by the names that Mac programs use.
#pragma once

#include <cairo.h>

// The glyphs and advances, in ems, of the 256 bytes in one encoding. Glyph 0 shows nothing.
struct DrawingFont {
    cairo_font_face_t* face;
    unsigned long glyphs[256];
    double advances[256];
    double above, below;  // how far glyphs reach from the baseline, in ems
};

// The font of that name, or fontconfig's fixed-pitch font when that name is not installed; null
// when there is no font at all. Made once for each name and kept. Any thread.
const DrawingFont* find_mac_roman_font(const char* name);
