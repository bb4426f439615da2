#include "look/title_line.h"

#include <AppKit/AppKit.h>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

constexpr NSUInteger most_characters = 256;
constexpr size_t most_known = 512;
constexpr unichar first_sign = ' ', last_sign = '~', first_letter = 0xC0, last_letter = 0x17F;

bool is_sign(unichar c) { return c >= first_sign && c <= last_sign; }

// The letters of European languages behind ASCII; two signs stand among them.
bool is_accented_letter(unichar c) {
    return c >= first_letter && c <= last_letter && c != 0xD7 && c != 0xF7;
}

bool is_letter(unichar c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || is_accented_letter(c);
}

void append_utf8(unichar c, std::string* text) {
    if (c < 0x80) {
        *text += static_cast<char>(c);
    } else {
        *text += static_cast<char>(0xC0 | c >> 6);
        *text += static_cast<char>(0x80 | (c & 0x3F));
    }
}

// Room for the glyphs of a title while it is drawn.
std::vector<cairo_glyph_t>& drawn_glyphs() {
    static auto& glyphs = *new std::vector<cairo_glyph_t>;
    return glyphs;
}

struct FreeItems {
    void operator()(GList* items) const {
        g_list_free_full(items, reinterpret_cast<GDestroyNotify>(pango_item_free));
    }
};
using Items = std::unique_ptr<GList, FreeItems>;

// The parts of the text that each have one font and one direction, as a layout in the font of
// `line` has them.
Items parts_of(const TextLayout& line, const std::string& text) {
    PangoAttrList* const attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes,
                           pango_attr_font_desc_new(pango_layout_get_font_description(line.get())));
    Items items(pango_itemize(pango_layout_get_context(line.get()), text.data(), 0,
                              static_cast<int>(text.size()), attributes, nullptr));
    pango_attr_list_unref(attributes);
    return items;
}

bool has_all(PangoFont* font, const std::string& letters) {
    for (const char* at = letters.c_str(); *at; at = g_utf8_next_char(at)) {
        if (!pango_font_has_char(font, g_utf8_get_char(at))) return false;
    }
    return true;
}

// How Pango lays out Latin text in the font of a look.
class LatinFont {
  public:
    explicit LatinFont(const MenuLook& look)
        : family_(look.family),
          size_(look.font_size * look.scale),
          bold_(look.bold),
          italic_(look.italic) {
        std::string letters;
        for (unichar c = first_sign; c <= last_sign; c++) append_utf8(c, &letters);
        const size_t signs = letters.size();
        for (unichar c = first_letter; c <= last_letter; c++) {
            if (is_accented_letter(c)) append_utf8(c, &letters);
        }
        const TextLayout line = line_text(look, "Latin");
        has_accents_ = take_from(line, letters);
        if (!has_accents_) take_from(line, letters.substr(0, signs));
    }
    ~LatinFont() {
        if (item_) pango_item_free(item_);
    }
    LatinFont(const LatinFont&) = delete;
    LatinFont& operator=(const LatinFont&) = delete;

    static const LatinFont& of(const MenuLook& look) {
        if (!last_ || !last_->is_for(look)) last_ = std::make_unique<LatinFont>(look);
        return *last_;
    }
    static void forget_glyphs() {
        if (last_) last_->known_.clear();
    }

    // The title as UTF-8 if it is simple; empty if it is not, or has no letter. (Pango looks up
    // signs without a letter differently.)
    std::string simple_text(NSString* title) const {
        const NSUInteger length = [title length];
        if (!item_ || length > most_characters) return {};
        unichar characters[most_characters];
        [title getCharacters:characters range:NSMakeRange(0, length)];
        std::string text;
        bool has_letter = false;
        for (NSUInteger i = 0; i < length; i++) {
            const unichar c = characters[i];
            if (!is_sign(c) && !(has_accents_ && is_accented_letter(c))) return {};
            has_letter = has_letter || is_letter(c);
            append_utf8(c, &text);
        }
        return has_letter ? text : std::string();
    }

    std::shared_ptr<PangoGlyphString> glyphs(const std::string& text) const {
        const auto known = known_.find(text);
        if (known != known_.end()) return known->second;
        const std::shared_ptr<PangoGlyphString> made(pango_glyph_string_new(),
                                                     pango_glyph_string_free);
        const auto size = static_cast<int>(text.size());
        pango_shape_full(text.data(), size, text.data(), size, &item_->analysis, made.get());
        if (known_.size() == most_known) known_.clear();
        return known_[text] = made;
    }

    int height() const { return height_; }

    void show(cairo_t* cairo, const PangoGlyphString* glyphs, double x, double y) const {
        std::vector<cairo_glyph_t>& drawn = drawn_glyphs();
        drawn.clear();
        const double base = y + double(baseline_) / PANGO_SCALE;
        int position = 0;
        for (int i = 0; i < glyphs->num_glyphs; i++) {
            const PangoGlyphInfo& glyph = glyphs->glyphs[i];
            const PangoGlyphGeometry& place = glyph.geometry;
            if (glyph.glyph != PANGO_GLYPH_EMPTY) {
                drawn.push_back({glyph.glyph, x + double(position + place.x_offset) / PANGO_SCALE,
                                 base + double(place.y_offset) / PANGO_SCALE});
            }
            position += place.width;
        }
        cairo_set_scaled_font(
            cairo, pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(item_->analysis.font)));
        cairo_show_glyphs(cairo, drawn.data(), static_cast<int>(drawn.size()));
    }

  private:
    bool is_for(const MenuLook& look) const {
        return look.font_size * look.scale == size_ && look.bold == bold_ &&
               look.italic == italic_ && look.family == family_;
    }

    // False when Pango does not draw all of the letters in one font and one direction. The line has
    // the look's font, and stands for all of them: laying out all letters, which measures each,
    // takes ten million instructions of a program's start.
    bool take_from(const TextLayout& line, const std::string& letters) {
        const Items items = parts_of(line, letters);
        const auto* const item = static_cast<const PangoItem*>(items ? items->data : nullptr);
        if (!item || items->next || item->analysis.level != 0 ||
            !PANGO_IS_CAIRO_FONT(item->analysis.font) || !has_all(item->analysis.font, letters)) {
            return false;
        }
        item_ = pango_item_copy(const_cast<PangoItem*>(item));
        baseline_ = pango_layout_get_baseline(line.get());
        height_ = text_height(line);
        return true;
    }

    const std::string family_;
    const double size_;
    const bool bold_, italic_;
    PangoItem* item_ = nullptr;  // null when no title is simple
    int baseline_ = 0, height_ = 0;
    bool has_accents_ = false;
    mutable std::unordered_map<std::string, std::shared_ptr<PangoGlyphString>> known_;

    static std::unique_ptr<LatinFont> last_;
};

std::unique_ptr<LatinFont> LatinFont::last_;

}  // namespace

TitleLine::TitleLine(const MenuLook& look, NSMenuItem* item, bool plain)
    : look_(look), item_(item), plain_(plain) {
    if (![item attributedTitle]) {
        const LatinFont& font = LatinFont::of(look);
        const std::string text = font.simple_text([item title]);
        if (!text.empty()) glyphs_ = font.glyphs(text);
    }
    if (!glyphs_) layout_ = item_text(look, item, plain);
}

void TitleLine::forget_glyphs() { LatinFont::forget_glyphs(); }

int TitleLine::width() const {
    return glyphs_ ? PANGO_PIXELS_CEIL(pango_glyph_string_get_width(glyphs_.get()))
                   : text_width(layout_);
}

int TitleLine::height() const {
    return glyphs_ ? LatinFont::of(look_).height() : text_height(layout_);
}

void TitleLine::fit(int width) {
    glyphs_.reset();
    if (!layout_) layout_ = item_text(look_, item_, plain_);
    fit_text(layout_, width);
}

void TitleLine::show(cairo_t* cairo, double x, double y) const {
    if (glyphs_) return LatinFont::of(look_).show(cairo, glyphs_.get(), x, y);
    cairo_move_to(cairo, x - text_left(layout_), y);
    pango_cairo_show_layout(cairo, layout_.get());
}
