#include "panels/sign.h"

#include <cairo.h>

#include <cmath>

#include "look/menu_look.h"
#include "menus/menu_paint.h"

namespace {

const struct SignColors {
    Sign sign;
    Color above, below;
} sign_colors[] = {
    {Sign::caution, {1, 0.800, 0.251, 1}, {0.965, 0.655, 0.078, 1}},
    {Sign::stop, {0.937, 0.353, 0.353, 1}, {0.812, 0.204, 0.212, 1}},
    {Sign::note, {0.329, 0.580, 0.957, 1}, {0.161, 0.427, 0.871, 1}},
};

void add_triangle(cairo_t* cairo, const Area& area) {
    const double side = area.width, radius = side * 0.09;
    const double low = area.top + side * 0.93, middle = area.left + side / 2;
    const struct {
        double x, y, from, to;
    } corners[] = {{area.left + side - radius, low - radius, -M_PI / 6, M_PI / 2},
                   {area.left + radius, low - radius, M_PI / 2, M_PI * 7 / 6},
                   {middle, area.top + side * 0.06 + radius, M_PI * 7 / 6, M_PI * 11 / 6}};
    cairo_new_sub_path(cairo);
    for (const auto& corner : corners) {
        cairo_arc(cairo, corner.x, corner.y, radius, corner.from, corner.to);
    }
    cairo_close_path(cairo);
}

// An exclamation mark; turned over, the letter of a note.
void add_mark(cairo_t* cairo, double middle, double top, double height, bool turned) {
    const double wide = height * 0.19, dot = wide * 0.56, stem = height * 0.66;
    const double stem_top = turned ? top + height - stem : top;
    const double dot_at = turned ? top + dot : top + height - dot;
    add_rounded_rectangle(cairo, middle - wide / 2, stem_top, wide, stem, wide / 2);
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, middle, dot_at, dot, 0, 2 * M_PI);
}

void fill_shape(cairo_t* cairo, const Area& area, const SignColors& colors) {
    cairo_pattern_t* fill = cairo_pattern_create_linear(0, area.top, 0, area.bottom());
    const Color &above = colors.above, &below = colors.below;
    cairo_pattern_add_color_stop_rgb(fill, 0, above.red, above.green, above.blue);
    cairo_pattern_add_color_stop_rgb(fill, 1, below.red, below.green, below.blue);
    cairo_set_source(cairo, fill);
    if (colors.sign == Sign::caution) {
        add_triangle(cairo, area);
    } else {
        const double half = area.width / 2.0;
        cairo_arc(cairo, area.left + half, area.top + half, area.width * 0.46, 0, 2 * M_PI);
    }
    cairo_fill(cairo);
    cairo_pattern_destroy(fill);
}

void fill_mark(cairo_t* cairo, const Area& area, Sign sign) {
    const bool triangle = sign == Sign::caution;
    const double side = area.width;
    cairo_set_source_rgb(cairo, triangle ? 0.24 : 1, triangle ? 0.17 : 1, triangle ? 0.02 : 1);
    add_mark(cairo, area.left + side / 2, area.top + side * (triangle ? 0.34 : 0.25),
             side * (triangle ? 0.44 : 0.5), sign == Sign::note);
    cairo_fill(cairo);
}

}  // namespace

void paint_sign(cairo_t* cairo, const Area& area, Sign sign) {
    for (const SignColors& colors : sign_colors) {
        if (colors.sign != sign) continue;
        fill_shape(cairo, area, colors);
        fill_mark(cairo, area, sign);
    }
}
