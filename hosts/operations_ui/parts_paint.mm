#include "operations_ui/parts_paint.h"

#include <cmath>

#include "look/menu_text.h"
#include "menus/menu_paint.h"

namespace operations {

namespace {

void set_color(cairo_t* cairo, const color_t& color, double alpha = 1) {
    cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha * alpha);
}

void add_outline(cairo_t* cairo, const area_t& area, double radius, double grown = 0) {
    add_rounded_rectangle(cairo, area.left - grown, area.top - grown, area.width + 2 * grown,
                          area.height + 2 * grown, radius + grown);
}

// At the left of the area or in its middle, upright in its middle.
void paint_line(cairo_t* cairo, const PartsScene& scene, const Part& part, const area_t& area,
                const color_t& color, double alpha, bool centered) {
    const text_t text = paragraph(scene.look, part.text, part.size, part.bold, 0);
    fit_text(text, area.width);
    const int free = centered ? (area.width - text_width(text)) / 2 : 0;
    set_color(cairo, color, alpha);
    cairo_move_to(cairo, area.left + free, area.top + (area.height - text_height(text)) / 2);
    pango_cairo_show_layout(cairo, text.get());
}

void paint_text(cairo_t* cairo, const PartsScene& scene, const Part& part, const area_t& area) {
    paint_line(cairo, scene, part, area, scene.look.palette->text, part.dim ? 0.7 : 1, false);
}

void paint_icon(cairo_t* cairo, const PartsScene& scene, const Part& part, const area_t& area) {
    NSString* path = [NSString stringWithUTF8String:part.text.c_str()];
    NSImage* image = path ? [[NSWorkspace sharedWorkspace] iconForFile:path] : nil;
    cairo_surface_t* surface =
        image ? scene.images->surface(image, area.width, area.height) : nullptr;
    if (!surface) return;
    cairo_set_source_surface(cairo, surface, area.left, area.top);
    cairo_paint(cairo);
}

void paint_bar(cairo_t* cairo, const PartsScene& scene, const Part& part, const area_t& area) {
    const double radius = area.height / 2.0;
    add_outline(cairo, area, radius);
    set_color(cairo, scene.look.palette->text, 0.12);
    cairo_fill(cairo);
    if (part.value <= 0) return;
    area_t done = area;
    done.width = std::max(area.height, static_cast<int>(area.width * part.value));
    add_outline(cairo, done, radius);
    set_color(cairo, scene.look.palette->highlight);
    cairo_fill(cairo);
}

void paint_button(cairo_t* cairo, const PartsScene& scene, const Part& part, const area_t& area) {
    const menu_palette_t& palette = *scene.look.palette;
    const double radius = PixelsOf(scene.look, 6), line = scene.look.hairline;
    add_outline(cairo, area, radius);
    set_color(cairo, part.chief ? palette.highlight : palette.text, part.chief ? 1 : 0.05);
    cairo_fill(cairo);
    if (!part.disabled && (&part == scene.hovered || &part == scene.pressed)) {
        add_outline(cairo, area, radius);
        set_color(cairo, palette.text, &part == scene.pressed ? 0.18 : 0.07);
        cairo_fill(cairo);
    }
    if (!part.chief) {
        cairo_set_line_width(cairo, line);
        add_outline(cairo, area, radius, -line / 2);
        set_color(cairo, palette.text, 0.16);
        cairo_stroke(cairo);
    }
    paint_line(cairo, scene, part, area, part.chief ? palette.highlight_text : palette.text,
               part.disabled ? 0.4 : 1, true);
}

void paint_check(cairo_t* cairo, const PartsScene& scene, const Part& part, const area_t& area) {
    const menu_palette_t& palette = *scene.look.palette;
    const int side = PixelsOf(scene.look, 16), gap = PixelsOf(scene.look, 8);
    const area_t box = {area.left, area.top + (area.height - side) / 2, side, side};
    const double radius = PixelsOf(scene.look, 4), line = scene.look.hairline;
    add_outline(cairo, box, radius);
    set_color(cairo, part.on ? palette.highlight : palette.text, part.on ? 1 : 0.05);
    cairo_fill(cairo);
    if (part.on) {
        cairo_set_line_width(cairo, side * 0.12);
        cairo_move_to(cairo, box.left + side * 0.25, box.top + side * 0.52);
        cairo_line_to(cairo, box.left + side * 0.43, box.top + side * 0.7);
        cairo_line_to(cairo, box.left + side * 0.76, box.top + side * 0.3);
        set_color(cairo, palette.highlight_text);
    } else {
        cairo_set_line_width(cairo, line);
        add_outline(cairo, box, radius, -line / 2);
        set_color(cairo, palette.text, &part == scene.hovered ? 0.6 : 0.35);
    }
    cairo_stroke(cairo);
    area_t label = area;
    label.left += side + gap;
    label.width -= side + gap;
    paint_line(cairo, scene, part, label, palette.text, 1, false);
}

void paint_focus(cairo_t* cairo, const PartsScene& scene) {
    const double ring = PixelsOf(scene.look, 3);
    cairo_set_line_width(cairo, ring);
    add_outline(cairo, AreaOf(scene.look, *scene.focused), PixelsOf(scene.look, 6), ring / 2);
    set_color(cairo, scene.look.palette->highlight, 0.38);
    cairo_stroke(cairo);
}

const struct {
    PartKind kind;
    void (*paint)(cairo_t*, const PartsScene&, const Part&, const area_t&);
} painters[] = {
    {PartKind::Text, paint_text},     {PartKind::Icon, paint_icon},   {PartKind::Bar, paint_bar},
    {PartKind::Button, paint_button}, {PartKind::Check, paint_check},
};

}  // namespace

int PixelsOf(const menu_look_t& look, double points) {
    return static_cast<int>(std::lround(points * look.scale));
}

area_t AreaOf(const menu_look_t& look, const Part& part) {
    return {PixelsOf(look, part.left), PixelsOf(look, part.top), PixelsOf(look, part.width),
            PixelsOf(look, part.height)};
}

void PaintParts(cairo_t* cairo, const PartsScene& scene) {
    set_color(cairo, scene.look.palette->panel);
    cairo_paint(cairo);
    // Where no window manager draws a frame.
    const double line = scene.look.hairline;
    cairo_set_line_width(cairo, line);
    cairo_rectangle(cairo, line / 2, line / 2, scene.size.width - line, scene.size.height - line);
    set_color(cairo, scene.look.palette->border);
    cairo_stroke(cairo);
    for (const Part& part : *scene.parts) {
        for (const auto& painter : painters) {
            if (painter.kind == part.kind) {
                painter.paint(cairo, scene, part, AreaOf(scene.look, part));
            }
        }
    }
    if (scene.focused && !scene.focused->disabled) paint_focus(cairo, scene);
}

}  // namespace operations
