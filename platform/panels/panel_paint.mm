#include "panels/panel_paint.h"

#include <AppKit/AppKit.h>

#include <algorithm>

#include "look/menu_text.h"
#include "menus/menu_paint.h"

namespace {

// What the painter of one widget draws with.
struct brush_t {
    cairo_t* cairo;
    const panel_content_t& content;
    panel_state_t state;
    image_cache_t* images;

    const menu_palette_t& palette() const { return *content.look.palette; }
    double hairline() const { return content.look.hairline; }
};

void set_color(const brush_t& brush, const color_t& color, double alpha = 1) {
    cairo_set_source_rgba(brush.cairo, color.red, color.green, color.blue, color.alpha * alpha);
}

void add_outline(const brush_t& brush, const area_t& area, double radius, double grown = 0) {
    add_rounded_rectangle(brush.cairo, area.left - grown, area.top - grown, area.width + 2 * grown,
                          area.height + 2 * grown, radius + grown);
}

void fill(const brush_t& brush, const area_t& area, double radius, const color_t& color,
          double alpha = 1) {
    add_outline(brush, area, radius);
    set_color(brush, color, alpha);
    cairo_fill(brush.cairo);
}

// A hairline just inside the area.
void outline(const brush_t& brush, const area_t& area, double radius, double alpha) {
    cairo_set_line_width(brush.cairo, brush.hairline());
    add_outline(brush, area, radius, -brush.hairline() / 2);
    set_color(brush, brush.palette().text, alpha);
    cairo_stroke(brush.cairo);
}

void draw_text(const brush_t& brush, const text_t& text, point_t at, const color_t& color,
               double alpha) {
    set_color(brush, color, alpha);
    cairo_move_to(brush.cairo, at.x, at.y);
    pango_cairo_show_layout(brush.cairo, text.get());
}

// Draws the text at the left or in the middle of the area, and halfway down.
void draw_line(const brush_t& brush, const widget_t& widget, const area_t& area,
               const color_t& color, double alpha, bool centered) {
    const text_t text = paragraph(brush.content.look, widget.text, widget.size, widget.bold, 0);
    fit_text(text, area.width);
    const int free = centered ? (area.width - text_width(text)) / 2 : 0;
    draw_text(brush, text, {area.left + free, area.top + (area.height - text_height(text)) / 2},
              color, alpha);
}

void paint_text(const brush_t& brush, const widget_t& widget) {
    draw_line(brush, widget, widget.area, brush.palette().text, widget.alpha, false);
}

void paint_paragraph(const brush_t& brush, const widget_t& widget) {
    const area_t& area = widget.area;
    draw_text(brush,
              paragraph(brush.content.look, widget.text, widget.size, widget.bold, area.width),
              {area.left, area.top}, brush.palette().text, widget.alpha);
}

void paint_sign(const brush_t& brush, const widget_t& widget) {
    paint_sign(brush.cairo, widget.area, widget.sign);
}

void paint_icon(const brush_t& brush, const widget_t& widget) {
    NSString* path = [NSString stringWithUTF8String:widget.text.c_str()];
    NSImage* image = path ? [[NSWorkspace sharedWorkspace] iconForFile:path] : nil;
    const area_t& area = widget.area;
    cairo_surface_t* surface =
        image ? brush.images->surface(image, area.width, area.height) : nullptr;
    if (!surface) return;
    cairo_set_source_surface(brush.cairo, surface, area.left, area.top);
    cairo_paint(brush.cairo);
}

void paint_bar(const brush_t& brush, const widget_t& widget) {
    area_t area = widget.area;
    const double radius = area.height / 2.0;
    fill(brush, area, radius, brush.palette().text, 0.12);
    if (widget.value <= 0) return;
    area.width = std::max(area.height, static_cast<int>(area.width * widget.value));
    fill(brush, area, radius, brush.palette().highlight);
}

void paint_focus(const brush_t& brush, const widget_t& widget) {
    const double ring = brush.content.pixels(3);
    cairo_set_line_width(brush.cairo, ring);
    add_outline(brush, widget.area, brush.content.pixels(6), ring / 2);
    set_color(brush, brush.palette().highlight, 0.38);
    cairo_stroke(brush.cairo);
}

void paint_button(const brush_t& brush, const widget_t& widget) {
    const menu_palette_t& palette = brush.palette();
    const bool is_default = widget.item == brush.content.default_item;
    const bool is_pressed = widget.item == brush.state.pressed;
    const double radius = brush.content.pixels(6);
    fill(brush, widget.area, radius, is_default ? palette.highlight : palette.text,
         is_default ? 1 : 0.05);
    if (!widget.disabled && (is_pressed || widget.item == brush.state.hovered)) {
        fill(brush, widget.area, radius, palette.text, is_pressed ? 0.18 : 0.07);
    }
    if (!is_default) outline(brush, widget.area, radius, 0.16);
    draw_line(brush, widget, widget.area, is_default ? palette.highlight_text : palette.text,
              widget.disabled ? 0.4 : 1, true);
}

void paint_tick(const brush_t& brush, const area_t& box) {
    const double side = box.width;
    cairo_set_line_width(brush.cairo, side * 0.12);
    cairo_move_to(brush.cairo, box.left + side * 0.25, box.top + side * 0.52);
    cairo_line_to(brush.cairo, box.left + side * 0.43, box.top + side * 0.7);
    cairo_line_to(brush.cairo, box.left + side * 0.76, box.top + side * 0.3);
    set_color(brush, brush.palette().highlight_text);
    cairo_stroke(brush.cairo);
}

void paint_check(const brush_t& brush, const widget_t& widget) {
    const menu_palette_t& palette = brush.palette();
    area_t label = widget.area;
    const int side = brush.content.pixels(16), taken = side + brush.content.pixels(8);
    const area_t box = {label.left, label.top + (label.height - side) / 2, side, side};
    const double radius = brush.content.pixels(4);
    fill(brush, box, radius, widget.on ? palette.highlight : palette.text, widget.on ? 1 : 0.05);
    if (widget.on) {
        paint_tick(brush, box);
    } else {
        outline(brush, box, radius, widget.item == brush.state.hovered ? 0.6 : 0.35);
    }
    label.left += taken;
    label.width -= taken;
    draw_line(brush, widget, label, palette.text, 1, false);
}

const struct {
    widget_kind_t kind;
    void (*paint)(const brush_t&, const widget_t&);
} painters[] = {
    {widget_kind_t::text, paint_text},   {widget_kind_t::paragraph, paint_paragraph},
    {widget_kind_t::sign, paint_sign},   {widget_kind_t::icon, paint_icon},
    {widget_kind_t::bar, paint_bar},     {widget_kind_t::button, paint_button},
    {widget_kind_t::check, paint_check},
};

// The border serves desktops where no window manager draws a frame.
void paint_ground(const brush_t& brush) {
    const extent_t size = brush.content.size;
    const double line = brush.hairline();
    set_color(brush, brush.palette().panel);
    cairo_paint(brush.cairo);
    cairo_set_line_width(brush.cairo, line);
    cairo_rectangle(brush.cairo, line / 2, line / 2, size.width - line, size.height - line);
    set_color(brush, brush.palette().border);
    cairo_stroke(brush.cairo);
}

}  // namespace

void paint_panel(cairo_t* cairo, const panel_scene_t& scene) {
    const panel_content_t& content = *scene.content;
    const brush_t brush = {cairo, content, scene.state, scene.images};
    paint_ground(brush);
    for (const widget_t& widget : content.widgets) {
        for (const auto& painter : painters) {
            if (painter.kind == widget.kind) painter.paint(brush, widget);
        }
    }
    const widget_t* focused = scene.state.focused ? content.widget(scene.state.focused) : nullptr;
    if (focused && focused->can_be_hit()) paint_focus(brush, *focused);
}
