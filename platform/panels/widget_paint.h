// What the painters of widgets share. Main thread.
#pragma once

#include "look/menu_text.h"
#include "panels/panel_paint.h"

// What the painter of one widget draws with.
struct Brush {
    cairo_t* cairo;
    const PanelContent& content;
    PanelState state;
    ImageCache* images;

    const MenuPalette& palette() const { return *content.look.palette; }
    double hairline() const { return content.look.hairline; }
};

void set_color(const Brush& brush, const Color& color, double alpha = 1);
void add_outline(const Brush& brush, const Area& area, double radius, double grown = 0);
void fill(const Brush& brush, const Area& area, double radius, const Color& color,
          double alpha = 1);
// A hairline just inside the area.
void outline(const Brush& brush, const Area& area, double radius, double alpha);
void draw_text(const Brush& brush, const TextLayout& text, MenuPoint at, const Color& color,
               double alpha);
// Draws the text where lines begin or in the middle of the area, and halfway down.
void draw_line(const Brush& brush, const Widget& widget, const Area& area, const Color& color,
               double alpha, bool centered);

// The painters of the widgets with which the user changes a value.
void paint_choice(const Brush& brush, const Widget& widget);
void paint_row(const Brush& brush, const Widget& widget);
void paint_field(const Brush& brush, const Widget& widget);
void paint_frame(const Brush& brush, const Widget& widget);
void paint_picture(const Brush& brush, const Widget& widget);

// Where a byte of a field's text stands, from the panel's left.
int text_place(const PanelContent& content, const Widget& field, size_t caret, size_t at);
// The byte of a field's text at which a click puts the caret.
size_t caret_at(const PanelContent& content, const Widget& field, size_t caret, int x);
