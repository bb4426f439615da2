#include "coregraphics/context.h"

#include <algorithm>

#include "coregraphics/bitmap_context.h"

namespace {

Extents united(const Extents& one, const Extents& other) {
    if (one.is_empty()) return other;
    if (other.is_empty()) return one;
    return {std::min(one.left, other.left), std::min(one.top, other.top),
            std::max(one.right, other.right), std::max(one.bottom, other.bottom)};
}

// Drawings between a save of the state and its restore are stored together.
void store_drawings(CGContextRef context) {
    if (!context->bitmap.data || context->unstored.is_empty()) return;
    store_bitmap(context, context->unstored);
    context->unstored = {};
}

}  // namespace

CGContext::~CGContext() {
    store_drawings(this);
    forget_bitmap(this);
    CGContextRelease(finer);
    cairo_destroy(cairo);
}

CGContextRef new_context(cairo_t* cairo, const cairo_matrix_t& matrix) {
    auto* context = new CGContext;
    context->cairo = cairo_reference(cairo);
    context->state.matrix = matrix;
    return context;
}

void begin_drawing(CGContextRef context, const DrawingColor& color) {
    cairo_save(context->cairo);
    cairo_set_matrix(context->cairo, &context->state.matrix);
    cairo_set_operator(context->cairo, CAIRO_OPERATOR_OVER);
    cairo_set_source_rgba(context->cairo, color.red, color.green, color.blue, color.alpha);
    cairo_set_antialias(context->cairo,
                        context->state.antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
    cairo_set_line_width(context->cairo, 1);
}

void end_drawing(CGContextRef context, const Extents& extents) {
    cairo_restore(context->cairo);
    context->unstored = united(context->unstored, extents);
    if (context->saved.empty()) store_drawings(context);
}

CGContextRef CGContextRetain(CGContextRef context) { return retained(context); }

void CGContextRelease(CGContextRef context) { release(context); }

void CGContextSaveGState(CGContextRef context) {
    repeat_finer(context, CGContextSaveGState);
    if (context) context->saved.push_back(context->state);
}

void CGContextRestoreGState(CGContextRef context) {
    repeat_finer(context, CGContextRestoreGState);
    if (!context || context->saved.empty()) return;
    context->state = context->saved.back();
    context->saved.pop_back();
    if (context->saved.empty()) store_drawings(context);
}

void CGContextTranslateCTM(CGContextRef context, CGFloat x, CGFloat y) {
    repeat_finer(context, CGContextTranslateCTM, x, y);
    if (context) cairo_matrix_translate(&context->state.matrix, x, y);
}

void CGContextRotateCTM(CGContextRef context, CGFloat angle) {
    repeat_finer(context, CGContextRotateCTM, angle);
    if (context) cairo_matrix_rotate(&context->state.matrix, angle);
}

void CGContextSetRGBFillColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue,
                              CGFloat alpha) {
    repeat_finer(context, CGContextSetRGBFillColor, red, green, blue, alpha);
    if (context) context->state.fill = {red, green, blue, alpha};
}

void CGContextSetRGBStrokeColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue,
                                CGFloat alpha) {
    repeat_finer(context, CGContextSetRGBStrokeColor, red, green, blue, alpha);
    if (context) context->state.stroke = {red, green, blue, alpha};
}

void CGContextSetGrayFillColor(CGContextRef context, CGFloat gray, CGFloat alpha) {
    CGContextSetRGBFillColor(context, gray, gray, gray, alpha);
}

void CGContextSetGrayStrokeColor(CGContextRef context, CGFloat gray, CGFloat alpha) {
    CGContextSetRGBStrokeColor(context, gray, gray, gray, alpha);
}

void CGContextSetShouldAntialias(CGContextRef context, bool shouldAntialias) {
    repeat_finer(context, CGContextSetShouldAntialias, shouldAntialias);
    if (context) context->state.antialias = shouldAntialias;
}
