#include <algorithm>
#include <cmath>

#include "coregraphics/context.h"
#include "coregraphics/fonts.h"

namespace {

// The most glyphs that go to cairo in one run.
constexpr size_t longest_run = 512;

void prepare_font(CGContextRef context) {
    const DrawingState& state = context->state;
    cairo_set_font_face(context->cairo, state.font->face);
    // Upwards, as the space is.
    cairo_matrix_t matrix;
    cairo_matrix_init_scale(&matrix, state.font_size, -state.font_size);
    cairo_set_font_matrix(context->cairo, &matrix);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options,
                                     state.antialias ? CAIRO_ANTIALIAS_GRAY : CAIRO_ANTIALIAS_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_set_font_options(context->cairo, options);
    cairo_font_options_destroy(options);
}

// The area that the glyphs of a line may reach, hinted ones too: an em to each side, a pixel up and
// down.
Extents line_extents(const DrawingState& state, double left, double right, double y) {
    const double em = state.font_size;
    const double xs[] = {left - em, right + em};
    const double ys[] = {y - state.font->below * em, y + state.font->above * em};
    Extents extents = {HUGE_VAL, HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    for (double corner_x : xs) {
        for (double corner_y : ys) {
            double x = corner_x, y = corner_y;
            cairo_matrix_transform_point(&state.matrix, &x, &y);
            extents = {std::min(extents.left, x), std::min(extents.top, y),
                       std::max(extents.right, x), std::max(extents.bottom, y)};
        }
    }
    return {extents.left - 1, extents.top - 1, extents.right + 1, extents.bottom + 1};
}

}  // namespace

void CGContextSelectFont(CGContextRef context, const char* name, CGFloat size,
                         CGTextEncoding encoding) {
    repeat_finer(context, CGContextSelectFont, name, size, encoding);
    if (!context) return;
    context->state.font = find_mac_roman_font(name);
    context->state.font_size = size;
}

void CGContextSetCharacterSpacing(CGContextRef context, CGFloat spacing) {
    repeat_finer(context, CGContextSetCharacterSpacing, spacing);
    if (context) context->state.character_spacing = spacing;
}

void CGContextSetTextDrawingMode(CGContextRef context, CGTextDrawingMode mode) {
    repeat_finer(context, CGContextSetTextDrawingMode, mode);
    if (context) context->state.text_mode = mode;
}

void CGContextShowTextAtPoint(CGContextRef context, CGFloat x, CGFloat y, const char* bytes,
                              size_t length) {
    repeat_finer(context, CGContextShowTextAtPoint, x, y, bytes, length);
    if (!context || !context->state.font || context->state.text_mode != kCGTextFill) return;
    const DrawingState& state = context->state;
    begin_drawing(context, state.fill);
    prepare_font(context);
    cairo_glyph_t glyphs[longest_run];
    int count = 0;
    const double left = x;
    for (size_t i = 0; i < length; i++) {
        const unsigned char byte = static_cast<unsigned char>(bytes[i]);
        if (state.font->glyphs[byte]) glyphs[count++] = {state.font->glyphs[byte], x, y};
        x += state.font->advances[byte] * state.font_size + state.character_spacing;
        if (count < static_cast<int>(longest_run)) continue;
        cairo_show_glyphs(context->cairo, glyphs, count);
        count = 0;
    }
    cairo_show_glyphs(context->cairo, glyphs, count);
    end_drawing(context, line_extents(state, left, x, y));
}
