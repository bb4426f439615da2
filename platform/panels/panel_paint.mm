#include "panels/panel_paint.h"

#include <AppKit/AppKit.h>

#include <algorithm>

#include "panels/widget_paint.h"

namespace {

void paint_text(const Brush& brush, const Widget& widget) {
    draw_line(brush, widget, widget.area, brush.palette().text, widget.alpha, false);
}

void paint_paragraph(const Brush& brush, const Widget& widget) {
    const Area& area = widget.area;
    const TextLayout text =
        paragraph(brush.content.look, widget.text, widget.size, widget.bold, area.width);
    if (brush.content.look.mirrored) align_right(text);
    draw_text(brush, text, {area.left, area.top}, brush.palette().text, widget.alpha);
}

void paint_sign(const Brush& brush, const Widget& widget) {
    paint_sign(brush.cairo, widget.area, widget.sign);
}

void paint_icon(const Brush& brush, const Widget& widget) {
    NSString* path = [NSString stringWithUTF8String:widget.text.c_str()];
    NSImage* image = path ? [[NSWorkspace sharedWorkspace] iconForFile:path] : nil;
    const Area& area = widget.area;
    cairo_surface_t* surface =
        image ? brush.images->surface(image, area.width, area.height) : nullptr;
    if (!surface) return;
    cairo_set_source_surface(brush.cairo, surface, area.left, area.top);
    cairo_paint(brush.cairo);
}

void paint_bar(const Brush& brush, const Widget& widget) {
    Area area = widget.area;
    const double radius = area.height / 2.0;
    fill(brush, area, radius, brush.palette().text, 0.12);
    if (widget.value <= 0) return;
    const int right = area.right();
    area.width = std::max(area.height, static_cast<int>(area.width * widget.value));
    if (brush.content.look.mirrored) area.left = right - area.width;
    fill(brush, area, radius, brush.palette().highlight);
}

void paint_focus(const Brush& brush, const Widget& widget) {
    const double ring = brush.content.pixels(3);
    cairo_set_line_width(brush.cairo, ring);
    add_outline(brush, widget.area, brush.content.pixels(6), ring / 2);
    set_color(brush, brush.palette().highlight, 0.38);
    cairo_stroke(brush.cairo);
}

void paint_button(const Brush& brush, const Widget& widget) {
    const MenuPalette& palette = brush.palette();
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

void paint_tick(const Brush& brush, const Area& box) {
    const double side = box.width;
    cairo_set_line_width(brush.cairo, side * 0.12);
    cairo_move_to(brush.cairo, box.left + side * 0.25, box.top + side * 0.52);
    cairo_line_to(brush.cairo, box.left + side * 0.43, box.top + side * 0.7);
    cairo_line_to(brush.cairo, box.left + side * 0.76, box.top + side * 0.3);
    set_color(brush, brush.palette().highlight_text);
    cairo_stroke(brush.cairo);
}

void paint_check(const Brush& brush, const Widget& widget) {
    const MenuPalette& palette = brush.palette();
    Area label = widget.area;
    const int side = brush.content.pixels(16), taken = side + brush.content.pixels(8);
    const bool mirrored = brush.content.look.mirrored;
    const Area box = {mirrored ? label.right() - side : label.left,
                      label.top + (label.height - side) / 2, side, side};
    const double radius = brush.content.pixels(4);
    fill(brush, box, radius, widget.on ? palette.highlight : palette.text, widget.on ? 1 : 0.05);
    if (widget.on) {
        paint_tick(brush, box);
    } else {
        outline(brush, box, radius, widget.item == brush.state.hovered ? 0.6 : 0.35);
    }
    if (!mirrored) label.left += taken;
    label.width -= taken;
    draw_line(brush, widget, label, palette.text, 1, false);
}

const struct {
    WidgetKind kind;
    void (*paint)(const Brush&, const Widget&);
} painters[] = {
    {WidgetKind::text, paint_text},   {WidgetKind::paragraph, paint_paragraph},
    {WidgetKind::sign, paint_sign},   {WidgetKind::icon, paint_icon},
    {WidgetKind::bar, paint_bar},     {WidgetKind::button, paint_button},
    {WidgetKind::check, paint_check}, {WidgetKind::choice, paint_choice},
    {WidgetKind::row, paint_row},     {WidgetKind::field, paint_field},
    {WidgetKind::frame, paint_frame}, {WidgetKind::picture, paint_picture},
};

// The border serves desktops where no window manager draws a frame.
void paint_ground(const Brush& brush) {
    const Extent size = brush.content.size;
    const double line = brush.hairline();
    set_color(brush, brush.palette().panel);
    cairo_paint(brush.cairo);
    cairo_set_line_width(brush.cairo, line);
    cairo_rectangle(brush.cairo, line / 2, line / 2, size.width - line, size.height - line);
    set_color(brush, brush.palette().border);
    cairo_stroke(brush.cairo);
}

void paint_drop_border(const Brush& brush) {
    const double line = brush.content.pixels(3);
    const Extent size = brush.content.size;
    cairo_set_line_width(brush.cairo, line);
    cairo_rectangle(brush.cairo, line / 2, line / 2, size.width - line, size.height - line);
    set_color(brush, brush.palette().highlight);
    cairo_stroke(brush.cairo);
}

}  // namespace

void paint_panel(cairo_t* cairo, const PanelScene& scene) {
    const PanelContent& content = *scene.content;
    const Brush brush = {cairo, content, scene.state, scene.images};
    paint_ground(brush);
    for (const Widget& widget : content.widgets) {
        for (const auto& painter : painters) {
            if (painter.kind == widget.kind) painter.paint(brush, widget);
        }
    }
    const Widget* focused = scene.state.focused ? content.widget(scene.state.focused) : nullptr;
    if (focused && focused->can_be_hit() && !focused->group) paint_focus(brush, *focused);
    if (scene.state.takes_drop) paint_drop_border(brush);
}
