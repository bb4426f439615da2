// An item's title on one line: measured, narrowed, drawn. Main thread.
//
// Most titles are Latin letters, digits and signs in one font. Pango searches each text for its
// directions, scripts, fonts and breaks before it asks for the glyphs, which is most of its work.
// For such a title the answers are known, so only the glyphs are asked for; they are the same, and
// they stand where Pango's layout puts them.
#pragma once

#include <cairo.h>

#include <memory>

#include "look/menu_text.h"

class TitleLine {
  public:
    // With `plain`, without the colours of the title's attributes.
    TitleLine(const MenuLook& look, NSMenuItem* item, bool plain);

    // Pixels that the title takes.
    int width() const;
    int height() const;
    // Narrows the title to `width` pixels by leaving out its middle.
    void fit(int width);
    // Draws the title in the context's colour; its upper left corner is at `x`, `y`.
    void show(cairo_t* cairo, double x, double y) const;

    // Titles are measured and then drawn, and drawn again when their menu scrolls, so their glyphs
    // are kept. Call this when the menu has closed.
    static void forget_glyphs();

    // Whether the title has no need of Pango's layout.
    bool is_simple() const { return glyphs_ != nullptr; }

  private:
    const MenuLook& look_;
    NSMenuItem* const item_;  // not owned
    const bool plain_;
    std::shared_ptr<PangoGlyphString> glyphs_;  // of a simple title
    TextLayout layout_;                         // of any other
};
