#include "look/marks.h"

#include <cmath>

void set_color(cairo_t* cairo, const Color& color, double share) {
    cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha * share);
}

void stroke_mark(cairo_t* cairo, const MenuLook& look, const Color& color) {
    set_color(cairo, color);
    cairo_set_line_width(cairo, look.mark_width / 9.0 * 1.5);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(cairo);
}

cairo_surface_t* chevron_mask(const Chevron& chevron, const MenuLook& look) {
    static Chevron last;
    static cairo_surface_t* mask;
    if (mask && chevron == last) return mask;
    if (mask) cairo_surface_destroy(mask);
    const int side = static_cast<int>(std::ceil(2 * chevron.reach)) + 2 * look.mark_width;
    mask = cairo_image_surface_create(CAIRO_FORMAT_A8, side, side);
    cairo_t* const cairo = cairo_create(mask);
    cairo_move_to(cairo, chevron.back, chevron.middle - chevron.reach);
    cairo_line_to(cairo, chevron.tip, chevron.middle);
    cairo_line_to(cairo, chevron.back, chevron.middle + chevron.reach);
    stroke_mark(cairo, look, {0, 0, 0, 1});
    cairo_destroy(cairo);
    last = chevron;
    return mask;
}
