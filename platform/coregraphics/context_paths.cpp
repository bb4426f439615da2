#include <cmath>

#include "coregraphics/context.h"

namespace {

enum Painting { FILL, FILL_EVEN_ODD, STROKE };

// The area that the path covers when it is painted, in device space; under a rotation as well.
Extents painted_extents(CGContextRef context, Painting painting) {
    cairo_t* cairo = context->cairo;
    double x1, y1, x2, y2;
    // cairo gives extents in the user's space, where they may not be upright; so this takes the
    // identity.
    cairo_identity_matrix(cairo);
    cairo_path_extents(cairo, &x1, &y1, &x2, &y2);
    cairo_set_matrix(cairo, &context->state.matrix);
    double reach = 1;
    if (painting == STROKE) {
        const cairo_matrix_t& matrix = context->state.matrix;
        // Half a line's width, and the miter that cairo may draw beyond it.
        reach +=
            10 * std::hypot(std::hypot(matrix.xx, matrix.yx), std::hypot(matrix.xy, matrix.yy));
    }
    return {x1 - reach, y1 - reach, x2 + reach, y2 + reach};
}

// Paints the current path and keeps it.
void paint_path(CGContextRef context, Painting painting) {
    const DrawingState& state = context->state;
    begin_drawing(context, painting == STROKE ? state.stroke : state.fill);
    const Extents extents = painted_extents(context, painting);
    cairo_set_fill_rule(context->cairo, painting == FILL_EVEN_ODD ? CAIRO_FILL_RULE_EVEN_ODD
                                                                  : CAIRO_FILL_RULE_WINDING);
    if (painting == STROKE) {
        cairo_stroke_preserve(context->cairo);
    } else {
        cairo_fill_preserve(context->cairo);
    }
    end_drawing(context, extents);
}

void paint_new_path(CGContextRef context, Painting painting) {
    paint_path(context, painting);
    cairo_new_path(context->cairo);
}

// Runs path calls in the user's space. cairo's save does not include paths, unlike the rest.
template <typename function>
void build_path(CGContextRef context, function build) {
    cairo_save(context->cairo);
    cairo_set_matrix(context->cairo, &context->state.matrix);
    build(context->cairo);
    cairo_restore(context->cairo);
}

void set_rectangle(CGContextRef context, CGRect rect) {
    build_path(context, [&rect](cairo_t* cairo) {
        cairo_new_path(cairo);
        cairo_rectangle(cairo, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    });
}

void set_ellipse(CGContextRef context, CGRect rect) {
    build_path(context, [&rect](cairo_t* cairo) {
        cairo_new_path(cairo);
        if (rect.size.width <= 0 || rect.size.height <= 0) return;
        cairo_translate(cairo, CGRectGetMidX(rect), CGRectGetMidY(rect));
        cairo_scale(cairo, rect.size.width / 2, rect.size.height / 2);
        cairo_arc(cairo, 0, 0, 1, 0, 2 * M_PI);
        cairo_close_path(cairo);
    });
}

}  // namespace

void CGContextFillRect(CGContextRef context, CGRect rect) {
    repeat_finer(context, CGContextFillRect, rect);
    if (!context) return;
    set_rectangle(context, rect);
    paint_new_path(context, FILL);
}

void CGContextStrokeRect(CGContextRef context, CGRect rect) {
    repeat_finer(context, CGContextStrokeRect, rect);
    if (!context) return;
    set_rectangle(context, rect);
    paint_new_path(context, STROKE);
}

void CGContextFillEllipseInRect(CGContextRef context, CGRect rect) {
    repeat_finer(context, CGContextFillEllipseInRect, rect);
    if (!context) return;
    set_ellipse(context, rect);
    paint_new_path(context, FILL);
}

void CGContextStrokeEllipseInRect(CGContextRef context, CGRect rect) {
    repeat_finer(context, CGContextStrokeEllipseInRect, rect);
    if (!context) return;
    set_ellipse(context, rect);
    paint_new_path(context, STROKE);
}

void CGContextBeginPath(CGContextRef context) {
    repeat_finer(context, CGContextBeginPath);
    if (context) cairo_new_path(context->cairo);
}

void CGContextMoveToPoint(CGContextRef context, CGFloat x, CGFloat y) {
    repeat_finer(context, CGContextMoveToPoint, x, y);
    if (context) build_path(context, [=](cairo_t* cairo) { cairo_move_to(cairo, x, y); });
}

void CGContextAddArc(CGContextRef context, CGFloat x, CGFloat y, CGFloat radius, CGFloat start,
                     CGFloat end, int clockwise) {
    repeat_finer(context, CGContextAddArc, x, y, radius, start, end, clockwise);
    if (!context) return;
    build_path(context, [=](cairo_t* cairo) {
        const auto add = clockwise ? cairo_arc_negative : cairo_arc;
        add(cairo, x, y, radius, start, end);
    });
}

void CGContextDrawPath(CGContextRef context, CGPathDrawingMode mode) {
    repeat_finer(context, CGContextDrawPath, mode);
    if (!context) return;
    if (mode == kCGPathFill || mode == kCGPathFillStroke) paint_path(context, FILL);
    if (mode == kCGPathEOFill || mode == kCGPathEOFillStroke) paint_path(context, FILL_EVEN_ODD);
    if (mode != kCGPathFill && mode != kCGPathEOFill) paint_path(context, STROKE);
    cairo_new_path(context->cairo);
}
