#include "panels/alert_paint.h"

#include <cmath>

#include "menus/menu_paint.h"

namespace {

void set_color(cairo_t* cairo, const color_t& color, double alpha = 1) {
    cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha * alpha);
}

void paint_text(cairo_t* cairo, const text_t& text, int x, int y, const color_t& color,
                double alpha = 1) {
    set_color(cairo, color, alpha);
    cairo_move_to(cairo, x, y);
    pango_cairo_show_layout(cairo, text.get());
}

const struct sign_colors_t {
    alert_sign_t sign;
    color_t above, below;
} sign_colors[] = {
    {alert_sign_t::caution, {1, 0.800, 0.251, 1}, {0.965, 0.655, 0.078, 1}},
    {alert_sign_t::stop, {0.937, 0.353, 0.353, 1}, {0.812, 0.204, 0.212, 1}},
    {alert_sign_t::note, {0.329, 0.580, 0.957, 1}, {0.161, 0.427, 0.871, 1}},
};

void add_triangle(cairo_t* cairo, const area_t& area) {
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

void paint_sign(cairo_t* cairo, const area_t& area, const sign_colors_t& colors) {
    cairo_pattern_t* fill = cairo_pattern_create_linear(0, area.top, 0, area.bottom());
    const color_t &above = colors.above, &below = colors.below;
    cairo_pattern_add_color_stop_rgb(fill, 0, above.red, above.green, above.blue);
    cairo_pattern_add_color_stop_rgb(fill, 1, below.red, below.green, below.blue);
    cairo_set_source(cairo, fill);
    const double side = area.width, middle = area.left + side / 2;
    const bool triangle = colors.sign == alert_sign_t::caution;
    if (triangle) {
        add_triangle(cairo, area);
    } else {
        cairo_arc(cairo, middle, area.top + side / 2, side * 0.46, 0, 2 * M_PI);
    }
    cairo_fill(cairo);
    cairo_pattern_destroy(fill);
    cairo_set_source_rgb(cairo, triangle ? 0.24 : 1, triangle ? 0.17 : 1, triangle ? 0.02 : 1);
    add_mark(cairo, middle, area.top + side * (triangle ? 0.34 : 0.25),
             side * (triangle ? 0.44 : 0.5), colors.sign == alert_sign_t::note);
    cairo_fill(cairo);
}

void add_outline(cairo_t* cairo, const area_t& area, double grown, double radius) {
    add_rounded_rectangle(cairo, area.left - grown, area.top - grown, area.width + 2 * grown,
                          area.height + 2 * grown, radius + grown);
}

void paint_button(cairo_t* cairo, const alert_layout_t& layout,
                  const alert_layout_t::button_t& button, const alert_state_t& state) {
    const menu_palette_t& palette = *layout.look().palette;
    const bool chief = button.item == layout.default_item();
    const double radius = layout.pixels(6), line = layout.look().hairline;
    add_outline(cairo, button.area, 0, radius);
    set_color(cairo, chief ? palette.highlight : palette.text, chief ? 1 : 0.05);
    cairo_fill(cairo);
    if (button.item == state.pressed || button.item == state.hovered) {
        add_outline(cairo, button.area, 0, radius);
        set_color(cairo, palette.text, button.item == state.pressed ? 0.18 : 0.07);
        cairo_fill(cairo);
    }
    cairo_set_line_width(cairo, line);
    add_outline(cairo, button.area, -line / 2, radius);
    set_color(cairo, palette.text, chief ? 0 : 0.16);
    cairo_stroke(cairo);
    if (button.item == state.focused) {
        const double ring = layout.pixels(3);
        cairo_set_line_width(cairo, ring);
        add_outline(cairo, button.area, ring / 2, radius);
        set_color(cairo, palette.highlight, 0.38);
        cairo_stroke(cairo);
    }
    const area_t& area = button.area;
    paint_text(cairo, button.title, area.left + (area.width - text_width(button.title)) / 2,
               area.top + (area.height - text_height(button.title)) / 2,
               chief ? palette.highlight_text : palette.text);
}

}  // namespace

void paint_alert(cairo_t* cairo, const alert_layout_t& layout, const alert_state_t& state) {
    const menu_palette_t& palette = *layout.look().palette;
    set_color(cairo, palette.panel);
    cairo_paint(cairo);
    // Where no window manager draws a frame.
    const double line = layout.look().hairline;
    cairo_set_line_width(cairo, line);
    cairo_rectangle(cairo, line / 2, line / 2, layout.width() - line, layout.height() - line);
    set_color(cairo, palette.border);
    cairo_stroke(cairo);
    for (const sign_colors_t& colors : sign_colors) {
        if (colors.sign == layout.sign()) paint_sign(cairo, layout.sign_area(), colors);
    }
    const point_t message = layout.message_at(), explanation = layout.explanation_at();
    paint_text(cairo, layout.message(), message.x, message.y, palette.text);
    paint_text(cairo, layout.explanation(), explanation.x, explanation.y, palette.text, 0.78);
    for (const auto& button : layout.buttons()) paint_button(cairo, layout, button, state);
}
