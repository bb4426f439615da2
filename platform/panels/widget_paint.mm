#include "panels/widget_paint.h"

#include <algorithm>

#include "menus/menu_paint.h"

void set_color(const Brush& brush, const Color& color, double alpha) {
    cairo_set_source_rgba(brush.cairo, color.red, color.green, color.blue, color.alpha * alpha);
}

void add_outline(const Brush& brush, const Area& area, double radius, double grown) {
    add_rounded_rectangle(brush.cairo, area.left - grown, area.top - grown, area.width + 2 * grown,
                          area.height + 2 * grown, radius + grown);
}

void fill(const Brush& brush, const Area& area, double radius, const Color& color, double alpha) {
    add_outline(brush, area, radius);
    set_color(brush, color, alpha);
    cairo_fill(brush.cairo);
}

void outline(const Brush& brush, const Area& area, double radius, double alpha) {
    cairo_set_line_width(brush.cairo, brush.hairline());
    add_outline(brush, area, radius, -brush.hairline() / 2);
    set_color(brush, brush.palette().text, alpha);
    cairo_stroke(brush.cairo);
}

void draw_text(const Brush& brush, const TextLayout& text, MenuPoint at, const Color& color,
               double alpha) {
    set_color(brush, color, alpha);
    cairo_move_to(brush.cairo, at.x, at.y);
    pango_cairo_show_layout(brush.cairo, text.get());
}

void draw_line(const Brush& brush, const Widget& widget, const Area& area, const Color& color,
               double alpha, bool centered) {
    const TextLayout text = paragraph(brush.content.look, widget.text, widget.size, widget.bold, 0);
    fit_text(text, area.width);
    const int spare = area.width - text_width(text);
    const int free = centered ? spare / 2 : brush.content.look.mirrored ? spare : 0;
    draw_text(
        brush, text,
        {area.left + free - text_left(text), area.top + (area.height - text_height(text)) / 2},
        color, alpha);
}

void paint_choice(const Brush& brush, const Widget& widget) {
    const MenuPalette& palette = brush.palette();
    const double radius = brush.content.pixels(6);
    const bool is_pressed = widget.item == brush.state.pressed;
    const bool is_hovered = widget.item == brush.state.hovered;
    fill(brush, widget.area, radius, palette.text, is_pressed ? 0.18 : is_hovered ? 0.1 : 0.05);
    outline(brush, widget.area, radius, 0.16);
    Area label = widget.area;
    const int border = brush.content.pixels(10), side = brush.content.pixels(8);
    const bool mirrored = brush.content.look.mirrored;
    label.left += border + (mirrored ? side : 0);
    label.width -= 2 * border + side;
    draw_line(brush, widget, label, palette.text, 1, false);
    const double x = mirrored ? widget.area.left + border : widget.area.right() - border - side;
    const double y = widget.area.top + widget.area.height / 2.0;
    cairo_set_line_width(brush.cairo, brush.content.look.scale * 1.5);
    cairo_move_to(brush.cairo, x, y - side / 4.0);
    cairo_line_to(brush.cairo, x + side / 2.0, y + side / 4.0);
    cairo_line_to(brush.cairo, x + side, y - side / 4.0);
    set_color(brush, palette.text, 0.7);
    cairo_stroke(brush.cairo);
}

void paint_row(const Brush& brush, const Widget& widget) {
    const MenuPalette& palette = brush.palette();
    const double radius = brush.content.pixels(5);
    const bool has_keys = widget.item == brush.state.focused;
    if (widget.on) {
        fill(brush, widget.area, radius, has_keys ? palette.highlight : palette.text,
             has_keys ? 1 : 0.12);
    } else if (widget.item == brush.state.hovered) {
        fill(brush, widget.area, radius, palette.text, 0.06);
    }
    Area label = widget.area;
    const int border = brush.content.pixels(10);
    label.left += border;
    label.width -= 2 * border;
    draw_line(brush, widget, label, widget.on && has_keys ? palette.highlight_text : palette.text,
              widget.alpha, false);
}

namespace {

constexpr double selection_alpha = 0.4;  // dark and light text can be read on it

// The text of a field, and how far it is moved to the left so that the caret can be seen.
struct FieldText {
    TextLayout layout;
    int border, shift, caret;
};

FieldText field_text(const PanelContent& content, const Widget& field, size_t caret) {
    FieldText text = {typed_text(content.look, field.text, field.size), content.pixels(8), 0, 0};
    PangoRectangle place;
    pango_layout_get_cursor_pos(
        text.layout.get(), static_cast<int>(std::min(caret, field.text.size())), &place, nullptr);
    text.caret = PANGO_PIXELS(place.x);
    const int room = field.area.width - 2 * text.border - content.look.hairline;
    text.shift = std::max(0, text.caret - room);
    return text;
}

// A text in two directions may have several selected stretches.
void paint_selection(const Brush& brush, const FieldText& text, MenuPoint at) {
    const auto [begin, end] = std::minmax(brush.state.caret, brush.state.anchor);
    int* ranges = nullptr;
    int count = 0;
    pango_layout_line_get_x_ranges(pango_layout_get_line_readonly(text.layout.get(), 0),
                                   static_cast<int>(begin), static_cast<int>(end), &ranges, &count);
    set_color(brush, brush.palette().highlight, selection_alpha);
    for (int i = 0; begin < end && i < count; i++) {
        const double left = pango_units_to_double(ranges[2 * i]);
        cairo_rectangle(brush.cairo, at.x + left, at.y,
                        pango_units_to_double(ranges[2 * i + 1]) - left, text_height(text.layout));
        cairo_fill(brush.cairo);
    }
    g_free(ranges);
}

}  // namespace

void paint_field(const Brush& brush, const Widget& widget) {
    const MenuPalette& palette = brush.palette();
    const bool has_keys = widget.item == brush.state.focused;
    const double radius = brush.content.pixels(6);
    const Area& area = widget.area;
    fill(brush, area, radius, palette.text, widget.disabled ? 0.02 : 0.04);
    outline(brush, area, radius, widget.item == brush.state.hovered ? 0.4 : 0.22);
    if (widget.text.empty() && !has_keys) {
        Widget hint = widget;
        hint.text = widget.hint;
        Area inner = area;
        inner.left += brush.content.pixels(8);
        inner.width -= 2 * brush.content.pixels(8);
        draw_line(brush, hint, inner, palette.text, 0.45, false);
    }
    const FieldText text = field_text(brush.content, widget, has_keys ? brush.state.caret : 0);
    cairo_save(brush.cairo);
    cairo_rectangle(brush.cairo, area.left + text.border, area.top,
                    area.width - 2 * text.border + brush.hairline(), area.height);
    cairo_clip(brush.cairo);
    const int top = area.top + (area.height - text_height(text.layout)) / 2;
    const int left = area.left + text.border - text.shift;
    if (has_keys) paint_selection(brush, text, {left, top});
    draw_text(brush, text.layout, {left, top}, palette.text, widget.disabled ? 0.4 : 1);
    if (has_keys) {
        cairo_rectangle(brush.cairo, left + text.caret, top, std::max(1.0, brush.hairline()),
                        text_height(text.layout));
        set_color(brush, palette.text);
        cairo_fill(brush.cairo);
    }
    cairo_restore(brush.cairo);
}

int text_place(const PanelContent& content, const Widget& field, size_t caret, size_t at) {
    const FieldText text = field_text(content, field, caret);
    PangoRectangle place;
    pango_layout_get_cursor_pos(text.layout.get(),
                                static_cast<int>(std::min(at, field.text.size())), &place, nullptr);
    return field.area.left + text.border - text.shift + PANGO_PIXELS(place.x);
}

size_t caret_at(const PanelContent& content, const Widget& field, size_t caret, int x) {
    const FieldText text = field_text(content, field, caret);
    int index = 0, trailing = 0;
    const int inside = x - field.area.left - text.border + text.shift;
    pango_layout_xy_to_index(text.layout.get(), inside * PANGO_SCALE, 0, &index, &trailing);
    auto at = static_cast<size_t>(index);
    const auto is_inside = [&] {
        return at < field.text.size() &&
               (static_cast<unsigned char>(field.text[at]) & 0xC0) == 0x80;
    };
    for (; trailing > 0 && at < field.text.size(); trailing--) {
        at++;
        while (is_inside()) at++;
    }
    return std::min(at, field.text.size());
}

void paint_frame(const Brush& brush, const Widget& widget) {
    const double radius = brush.content.pixels(7);
    fill(brush, widget.area, radius, brush.palette().text, 0.03);
    outline(brush, widget.area, radius, 0.16);
}

void paint_picture(const Brush& brush, const Widget& widget) {
    if (!widget.picture) return;
    const Area& area = widget.area;
    const double width = cairo_image_surface_get_width(widget.picture.get());
    const double height = cairo_image_surface_get_height(widget.picture.get());
    const double scale = std::min({1.0, area.width / width, area.height / height});
    const bool mirrored = brush.content.look.mirrored;
    cairo_save(brush.cairo);
    cairo_translate(brush.cairo, mirrored ? area.right() - width * scale : area.left, area.top);
    cairo_scale(brush.cairo, scale, scale);
    cairo_set_source_surface(brush.cairo, widget.picture.get(), 0, 0);
    cairo_paint(brush.cairo);
    cairo_restore(brush.cairo);
}
