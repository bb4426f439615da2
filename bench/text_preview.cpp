// The cost of a text preview compared with only drawing its glyphs, in the default square.
#include <cairo-ft.h>
#include <string.h>

#include <vector>

#include "bench/harness.h"
#include "preview/dv_preview.h"
#include "preview/dv_text_lines.h"
#include "tree/dv_state.h"

namespace {

constexpr uint32_t side = 256, lines = 21, columns = 42;
constexpr double limit = 2;

// A page full of letters: every line drawn to its end.
std::vector<char> page() {
    std::vector<char> text(DV_PREVIEW_TEXT_CAPACITY);
    for (uint32_t i = 0; i < lines * columns; i++) text[i] = static_cast<char>('!' + i * 7 % 94);
    return text;
}

// The glyphs at their places in the preview, ready to be drawn.
class BareGlyphs {
  public:
    explicit BareGlyphs(const std::vector<char>& text)
        : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side)),
          cairo_(cairo_create(surface_)) {
        cairo_select_font_face(cairo_, "monospace", CAIRO_FONT_SLANT_NORMAL,
                               CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_size(cairo_, 9);
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_NONE);
        cairo_set_font_options(cairo_, options);
        cairo_font_options_destroy(options);
        FT_Face face = cairo_ft_scaled_font_lock_face(cairo_get_scaled_font(cairo_));
        for (uint32_t i = 0; i < lines * columns; i++) {
            const uint32_t column = i % columns, line = i / columns;
            glyphs_.push_back({FT_Get_Char_Index(face, static_cast<unsigned char>(text[i])),
                               2 + column * 6.0, 14 + line * 12.0});
        }
        cairo_ft_scaled_font_unlock_face(cairo_get_scaled_font(cairo_));
    }
    ~BareGlyphs() {
        cairo_destroy(cairo_);
        cairo_surface_destroy(surface_);
    }
    BareGlyphs(const BareGlyphs&) = delete;
    BareGlyphs& operator=(const BareGlyphs&) = delete;

    void draw() {
        for (uint32_t line = 0; line < lines; line++) {
            cairo_show_glyphs(cairo_, glyphs_.data() + line * columns, columns);
        }
    }

  private:
    cairo_surface_t* surface_;
    cairo_t* cairo_;
    std::vector<cairo_glyph_t> glyphs_;
};

}  // namespace

int main() {
    const std::vector<char> text = page();
    std::vector<char> buffer = text;
    BareGlyphs glyphs(text);
    static delvio_t state;
    state.preview_size = side;
    dv_create_preview_context(&state);

    bench::Race race("text preview", static_cast<int>(lines * columns), bench::processor_time);
    race.add("bare glyphs, cairo", [&] { glyphs.draw(); });
    race.add("text preview", [&] {
        memcpy(buffer.data(), text.data(), text.size());
        // The caller owns the image; the checker knows that only of names with "Create".
        CGImageRelease(  // NOLINT(clang-analyzer-osx.cocoa.RetainCount)
            dv_render_text_preview(&state, buffer.data(), lines * columns));
    });
    race.run(501);
    race.print();
    bench::check("text preview / bare glyphs",
                 race.seconds("text preview") / race.seconds("bare glyphs, cairo"), limit);
    return bench::status();
}
