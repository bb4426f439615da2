#include "menus/menu_paint.h"

#include <algorithm>
#include <cmath>

#include "look/image_questions.h"
#include "look/marks.h"
#include "look/server_copy.h"
#include "look/title_line.h"
#include "menus/menu_items.h"

namespace {

// The share of the darkest shadow at a distance from the edge of what casts it, from -1 (inside,
// where the shadow is full) to 1 (where it ends).
double shadow_share(double distance) {
    const double inward = std::clamp((1 - distance) / 2, 0.0, 1.0);
    return inward * inward * (3 - 2 * inward);
}

// A soft edge of lines a pixel wide. It goes on below the panel, whose lower edge hides less of the
// dropped shadow than its upper one.
void paint_shadow(cairo_t* cairo, const MenuScene& scene) {
    const MenuLook& look = scene.layout->look();
    const int reach = look.shadow_extent * 3 / 4, drop = look.shadow_extent / 4;
    cairo_save(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_ADD);  // lines that meet in a corner leave no gap
    cairo_set_line_width(cairo, 1);
    for (int ring = -drop - look.hairline; ring < reach; ring++) {
        const double spread = ring + 0.5;
        const double alpha = 1.6 * look.palette->shadow * shadow_share(spread / reach);
        cairo_set_source_rgba(cairo, 0, 0, 0, std::min(alpha, 1.0));
        add_rounded_rectangle(cairo, scene.left - spread, scene.top - spread + drop,
                              scene.width + 2 * spread, scene.height + 2 * spread,
                              look.radius + spread);
        cairo_stroke(cairo);
    }
    cairo_restore(cairo);
}

// Whether the clip shows nothing outside of the panel.
bool is_inside_panel(cairo_t* cairo, const MenuScene& scene) {
    double x1, y1, x2, y2;
    cairo_clip_extents(cairo, &x1, &y1, &x2, &y2);
    const int corner = scene.layout->look().radius;
    return x1 >= scene.left && x2 <= scene.left + scene.width && y1 >= scene.top + corner &&
           y2 <= scene.top + scene.height - corner;
}

// Two lines along the left and right side of the panel, `inset` from its edge.
void paint_sides(cairo_t* cairo, const MenuScene& scene, int inset, const Color& color) {
    const int line = scene.layout->look().hairline;
    set_color(cairo, color);
    cairo_rectangle(cairo, scene.left + inset, scene.top, line, scene.height);
    cairo_rectangle(cairo, scene.left + scene.width - inset - line, scene.top, line, scene.height);
    cairo_fill(cairo);
}

// The same pixels as paint_panel() draws between the corners. The clip is there whenever single
// rows are drawn anew, and round outlines take ten times as long.
void paint_straight_part(cairo_t* cairo, const MenuScene& scene) {
    const MenuLook& look = scene.layout->look();
    set_color(cairo, look.palette->panel);
    cairo_rectangle(cairo, scene.left, scene.top, scene.width, scene.height);
    cairo_fill(cairo);
    paint_sides(cairo, scene, look.hairline, look.palette->edge);
    paint_sides(cairo, scene, 0, look.palette->border);
}

void paint_panel(cairo_t* cairo, const MenuScene& scene) {
    const MenuLook& look = scene.layout->look();
    const double line = look.hairline;
    // A shape's corners have no soft edge: the pixels that the shape leaves of them look like the
    // border.
    if (!scene.rounded) {
        cairo_set_source_rgb(cairo, 0.5, 0.5, 0.5);
        cairo_rectangle(cairo, scene.left, scene.top, scene.width, scene.height);
        cairo_fill(cairo);
    }
    add_rounded_rectangle(cairo, scene.left, scene.top, scene.width, scene.height, look.radius);
    set_color(cairo, look.palette->panel);
    cairo_fill(cairo);
    cairo_set_line_width(cairo, line);
    add_rounded_rectangle(cairo, scene.left + line * 1.5, scene.top + line * 1.5,
                          scene.width - 3 * line, scene.height - 3 * line,
                          look.radius - line * 1.5);
    set_color(cairo, look.palette->edge);
    cairo_stroke(cairo);
    add_rounded_rectangle(cairo, scene.left + line / 2, scene.top + line / 2, scene.width - line,
                          scene.height - line, look.radius - line / 2);
    set_color(cairo, look.palette->border);
    cairo_stroke(cairo);
}

// The left edge of something `width` wide that begins `start` from the edge where lines begin.
double placed(const MenuScene& scene, double start, double width) {
    const bool mirrored = scene.layout->look().mirrored;
    return scene.left + (mirrored ? scene.width - start - width : start);
}

void paint_separator(cairo_t* cairo, const MenuScene& scene, const MenuRow& row, int y) {
    const MenuLook& look = scene.layout->look();
    const int left = scene.left + look.inset + look.padding;
    const int right = scene.left + scene.width - look.inset - look.padding;
    set_color(cairo, look.palette->separator);
    const int line = y + (row.height - look.hairline) / 2;
    cairo_rectangle(cairo, left, line, right - left, look.hairline);
    cairo_fill(cairo);
}

// The row's text and marks are drawn in these.
struct RowColors {
    Color text, mark;
    double image_alpha;
    bool plain;  // the attributes' own colours are not used
};

RowColors row_colors(const MenuScene& scene, const MenuRow& row) {
    const MenuPalette& palette = *scene.layout->look().palette;
    if (![row.item isEnabled]) return {palette.dimmed_text, palette.dimmed_text, 0.45, true};
    const bool hidden = [[row.item image] isOfHiddenFile];
    const double image_alpha = hidden ? 0.55 : 1;
    if (row.item == scene.highlighted && !scene.is_trail) {
        return {palette.highlight_text, palette.highlight_text, image_alpha, true};
    }
    return {hidden ? palette.hidden_text : palette.text, palette.mark, image_alpha, false};
}

void paint_highlight(cairo_t* cairo, const MenuScene& scene, const MenuRow& row, int y) {
    const MenuLook& look = scene.layout->look();
    set_color(cairo, scene.is_trail ? look.palette->trail : look.palette->highlight);
    add_rounded_rectangle(cairo, scene.left + look.inset, y, scene.width - 2 * look.inset,
                          row.height, look.row_radius);
    cairo_fill(cairo);
}

// Over the lower right corner of an image.
void paint_emblem(cairo_t* cairo, const MenuScene& scene, NSImage* emblem, double right,
                  double bottom) {
    if (!emblem) return;
    const MenuLook& look = scene.layout->look();
    const int side = look.image_side * 5 / 8, overhang = 2 * look.hairline;
    cairo_surface_t* surface = scene.images->surface(emblem, side, side);
    if (!surface) return;
    cairo_set_source_surface(cairo, server_copy(surface, cairo), right - side + overhang,
                             bottom - side + overhang);
    cairo_paint(cairo);
}

// A ribbon over the lower right corner of an image.
void paint_bookmark(cairo_t* cairo, const MenuScene& scene, double right, double bottom) {
    const MenuLook& look = scene.layout->look();
    const double width = std::round(look.image_side * 0.44), height = std::round(width * 1.3);
    const double x = right - width + look.hairline, y = bottom - height + look.hairline;
    cairo_move_to(cairo, x, y);
    cairo_line_to(cairo, x + width, y);
    cairo_line_to(cairo, x + width, y + height);
    cairo_line_to(cairo, x + width / 2, y + height * 0.72);
    cairo_line_to(cairo, x, y + height);
    cairo_close_path(cairo);
    set_color(cairo, look.palette->panel);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_width(cairo, 2 * look.hairline);
    cairo_stroke_preserve(cairo);
    set_color(cairo, look.palette->bookmark);
    cairo_fill(cairo);
}

void paint_image(cairo_t* cairo, const MenuScene& scene, const MenuRow& row, int y, double alpha) {
    NSImage* image = [row.item image];
    if (!image) return;
    const NSSize size = shown_image_size(scene.layout->look(), image);
    cairo_surface_t* surface = scene.images->surface(image, size.width, size.height);
    if (!surface) return;
    const int column = row.kind == image_row ? size.width : scene.layout->image_width();
    const int width = size.width;
    const int before = (column - width) / 2, above = (row.height - int(size.height)) / 2;
    const double left = placed(scene, scene.layout->image_left() + before, width);
    cairo_set_source_surface(cairo, server_copy(surface, cairo), left, y + above);
    cairo_paint_with_alpha(cairo, alpha);
    if (row.kind != title_row) return;
    const int below = (row.height + int(size.height)) / 2;
    const double right = left + size.width, bottom = y + below;
    const MenuMark mark = mark_of(row.item);
    if (mark == menu_mark_bookmark) paint_bookmark(cairo, scene, right, bottom);
    NSImage* emblem = mark == menu_mark_link ? [image emblemOfLinks] : [image emblem];
    paint_emblem(cairo, scene, emblem, right, bottom);
}

void paint_title(cairo_t* cairo, const MenuScene& scene, const MenuRow& row, int y,
                 const RowColors& colors) {
    const MenuLayout& layout = *scene.layout;
    const int room = layout.title_right() - layout.title_left(row);
    if (room <= 0) return;
    TitleLine title(layout.look(), row.item, colors.plain);
    if (title.width() > room) title.fit(room);
    set_color(cairo, colors.text);
    const int width = std::min(title.width(), room);
    title.show(cairo, placed(scene, layout.title_left(row), width),
               y + std::floor((row.height - title.height()) / 2.0));
}

void paint_chevron(cairo_t* cairo, const MenuScene& scene, const MenuRow& row, int y,
                   const Color& color) {
    const MenuLook& look = scene.layout->look();
    const double reach = look.mark_width * 0.4;
    const double end = scene.width - look.inset - look.padding - 0.5;
    const double tip = placed(scene, end, 0), back = placed(scene, end - reach, 0);
    const double middle = y + row.height / 2.0;
    // A whole pixel, with room for the line's width.
    const double left = std::floor(std::min(tip, back) - look.mark_width / 2.0);
    const double top = std::floor(middle - reach - look.mark_width / 2.0);
    const Chevron chevron = {back - left, tip - left, middle - top, reach, look.mark_width};
    set_color(cairo, color);
    cairo_mask_surface(cairo, server_copy(chevron_mask(chevron, look), cairo), left, top);
}

void paint_state(cairo_t* cairo, const MenuScene& scene, const MenuRow& row, int y,
                 const Color& color) {
    const NSInteger state = [row.item state];
    if (state == NSOffState) return;
    const MenuLook& look = scene.layout->look();
    const double side = look.mark_width, left = placed(scene, scene.layout->mark_left(), side);
    const double middle = y + row.height / 2.0;
    cairo_move_to(cairo, left, middle);
    if (state == NSOnState) {
        cairo_line_to(cairo, left + side * 0.36, middle + side * 0.36);
        cairo_line_to(cairo, left + side, middle - side * 0.42);
    } else {
        cairo_line_to(cairo, left + side, middle);
    }
    stroke_mark(cairo, look, color);
}

void paint_row(cairo_t* cairo, const MenuScene& scene, const MenuRow& row, int y) {
    if (row.kind == separator_row) return paint_separator(cairo, scene, row, y);
    if (row.kind == view_row) return;
    // Marks that pile up on a letter reach far beyond its line.
    cairo_save(cairo);
    cairo_rectangle(cairo, scene.left, y, scene.width, row.height);
    cairo_clip(cairo);
    const RowColors colors = row_colors(scene, row);
    if (row.item == scene.highlighted) paint_highlight(cairo, scene, row, y);
    paint_state(cairo, scene, row, y, colors.text);
    paint_image(cairo, scene, row, y, colors.image_alpha);
    paint_title(cairo, scene, row, y, colors);
    if ([row.item hasSubmenu]) paint_chevron(cairo, scene, row, y, colors.mark);
    cairo_restore(cairo);
}

// Draws only the rows that the clip shows.
void paint_rows(cairo_t* cairo, const MenuScene& scene) {
    double x1, y1, x2, y2;
    cairo_clip_extents(cairo, &x1, &y1, &x2, &y2);
    const int offset = scene.top - scene.scroll;
    const std::vector<MenuRow>& rows = scene.layout->rows();
    size_t index = scene.layout->first_row_below(static_cast<int>(y1) - offset);
    for (; index < rows.size() && rows[index].top + offset < y2; index++) {
        paint_row(cairo, scene, rows[index], rows[index].top + offset);
    }
}

// A strip at the panel's upper (`direction` -1) or lower edge, above which a chevron points.
void paint_arrow(cairo_t* cairo, const MenuScene& scene, int direction) {
    const MenuLook& look = scene.layout->look();
    const int height = look.arrow_height, line = 2 * look.hairline;
    const int top = direction < 0 ? scene.top + line : scene.top + scene.height - line - height;
    set_color(cairo, look.palette->panel);
    cairo_rectangle(cairo, scene.left + line, top, scene.width - 2 * line, height);
    cairo_fill(cairo);
    const double reach = look.mark_width * 0.5, middle = scene.left + scene.width / 2.0;
    const double tip = top + height / 2.0 + direction * reach / 2;
    cairo_move_to(cairo, middle - reach, tip - direction * reach);
    cairo_line_to(cairo, middle, tip);
    cairo_line_to(cairo, middle + reach, tip - direction * reach);
    stroke_mark(cairo, look, look.palette->mark);
}

}  // namespace

void add_rounded_rectangle(cairo_t* cairo, double left, double top, double width, double height,
                           double radius) {
    radius = std::max(0.0, std::min({radius, width / 2, height / 2}));
    const double right = left + width, bottom = top + height;
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, right - radius, top + radius, radius, -M_PI_2, 0);
    cairo_arc(cairo, right - radius, bottom - radius, radius, 0, M_PI_2);
    cairo_arc(cairo, left + radius, bottom - radius, radius, M_PI_2, M_PI);
    cairo_arc(cairo, left + radius, top + radius, radius, M_PI, 3 * M_PI_2);
    cairo_close_path(cairo);
}

void paint_menu(cairo_t* cairo, const MenuScene& scene) {
    const MenuLook& look = scene.layout->look();
    cairo_save(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgba(cairo, 0, 0, 0, 0);
    cairo_paint(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_OVER);
    if (is_inside_panel(cairo, scene)) {
        paint_straight_part(cairo, scene);
    } else {
        if (scene.shadow) paint_shadow(cairo, scene);
        paint_panel(cairo, scene);
    }
    cairo_rectangle(cairo, scene.left, scene.top + 2 * look.hairline, scene.width,
                    scene.height - 4 * look.hairline);
    cairo_clip(cairo);
    paint_rows(cairo, scene);
    if (scene.scrolls_up) paint_arrow(cairo, scene, -1);
    if (scene.scrolls_down) paint_arrow(cairo, scene, 1);
    cairo_restore(cairo);
}
