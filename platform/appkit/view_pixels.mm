#include "appkit/view_pixels.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>

#include "x11/window_pixels.h"

@interface NSGraphicsContext (CurrentTransform)
- (NSAffineTransform*)GSCurrentCTM;
@end

cairo_matrix_t focus_matrix(cairo_t* cairo) {
    const NSAffineTransformStruct view =
        [[[NSGraphicsContext currentContext] GSCurrentCTM] transformStruct];
    cairo_matrix_t inner, outer;
    cairo_matrix_init(&inner, view.m11, view.m12, view.m21, view.m22, view.tX, view.tY);
    cairo_get_matrix(cairo, &outer);
    cairo_matrix_multiply(&inner, &inner, &outer);
    return inner;
}

NSRect focus_device_area(NSRect rect) {
    const cairo_matrix_t matrix = focus_matrix(focused_cairo());
    double x1 = NSMinX(rect), y1 = NSMinY(rect), x2 = NSMaxX(rect), y2 = NSMaxY(rect);
    cairo_matrix_transform_point(&matrix, &x1, &y1);
    cairo_matrix_transform_point(&matrix, &x2, &y2);
    const double left = std::round(std::min(x1, x2)), top = std::round(std::min(y1, y2));
    return NSMakeRect(left, top, std::round(std::max(x1, x2)) - left,
                      std::round(std::max(y1, y2)) - top);
}

cairo_surface_t* copy_view_pixels(NSView* view) {
    [view lockFocus];
    cairo_surface_t* copy = nullptr;
    if (cairo_t* cairo = focused_cairo()) {
        const NSRect area = focus_device_area([view bounds]);
        copy = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(NSWidth(area)),
                                          static_cast<int>(NSHeight(area)));
        cairo_t* to = cairo_create(copy);
        cairo_set_source_surface(to, cairo_get_target(cairo), -NSMinX(area), -NSMinY(area));
        cairo_paint(to);
        cairo_destroy(to);
    }
    [view unlockFocus];
    return copy;
}

void replace_view_pixels(NSView* view, cairo_surface_t* copy) {
    [view lockFocus];
    if (cairo_t* cairo = focused_cairo()) {
        const NSRect area = focus_device_area([view bounds]);
        cairo_save(cairo);
        cairo_identity_matrix(cairo);
        cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
        cairo_set_source_surface(cairo, copy, NSMinX(area), NSMinY(area));
        cairo_rectangle(cairo, NSMinX(area), NSMinY(area), NSWidth(area), NSHeight(area));
        cairo_fill(cairo);
        cairo_restore(cairo);
    }
    [view unlockFocus];
}
