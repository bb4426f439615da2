// A sheet of paper that a decoder draws on: texts, lists, specimens. Lengths are points, the origin
// is the upper left corner. One thread.
#pragma once

#include <cairo.h>
#include <pango/pango.h>

#include <string>
#include <vector>

#include "quicklook/decoder/decoder_call.h"

namespace thumbnails {

// What a part of a text is; it decides about the colour.
enum class Ink {
    text,
    dimmed,
    accent,
    keyword,
    type,
    string,
    number,
    comment,
    name,
    added,
    removed,
};

// A part of a line, in bytes.
struct Stroke {
    size_t start, length;
    Ink ink;
};

class Sheet {
  public:
    // As wide as the box, and at most as high.
    explicit Sheet(const DecoderCall& call);
    ~Sheet();
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;

    double width() const { return width_; }
    double height() const { return height_; }
    double margin() const { return margin_; }
    double text_width() const { return width_ - 2 * margin_; }
    // The size of small text that suits the sheet.
    double text_size() const;

    cairo_t* cairo() { return cairo_; }
    void set_ink(Ink ink);
    // A layout of text in the family, `size` points high. The caller frees it.
    PangoLayout* layout(const std::string& text, const char* family, double size);
    // Colours parts of a layout's text.
    void colour(PangoLayout* layout, const std::vector<Stroke>& strokes);
    // Draws the layout with its upper left corner here, on whole pixels. Returns its height.
    double draw(PangoLayout* layout, double x, double y);
    // Draws one line that ends in an ellipsis where it is wider than `room`.
    double draw_line(const std::string& text, const char* family, double size, double x, double y,
                     double room, PangoEllipsizeMode cut = PANGO_ELLIPSIZE_END);
    double width_of(PangoLayout* layout) const;

    // Writes the sheet as the answer, cut below `end`; what is below goes on, so it fades.
    void write(double end, bool goes_on, const char* type);

  private:
    double whole_pixels(double points) const;
    void fade();
    void frame(int height);

    const double scale_;
    const bool is_dark_;
    double width_, height_, margin_;
    cairo_surface_t* surface_;
    cairo_t* cairo_;
};

inline constexpr char fixed_family[] = "monospace", sans_family[] = "sans-serif";

}  // namespace thumbnails
