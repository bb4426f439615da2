#include "coregraphics/fonts.h"

#include <cairo-ft.h>
#include <fontconfig/fontconfig.h>
#include <string.h>

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace {

struct PatternDeleter {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using CairoPattern = std::unique_ptr<FcPattern, PatternDeleter>;

// Advances that programs rely on even when another font stands in: Monaco's is 0.6 em, and lines of
// text that were laid out for it must fit.
const struct {
    const char* name;
    double advance;
} fixed_advances[] = {{"Monaco", 0.6}};

// MacRoman from 0x80 on.
const char16_t mac_roman[129] =
    u"ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø"
    u"¿¡¬√ƒ≈∆«»…\u00a0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ\uf8ffÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";

char16_t unicode_of(unsigned byte) { return byte < 0x80 ? byte : mac_roman[byte - 0x80]; }

bool is_control(unsigned byte) { return byte < 0x20 || byte == 0x7f; }

CairoPattern best_match(const char* family) {
    CairoPattern wanted(FcPatternCreate());
    FcPatternAddString(wanted.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
    FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result;
    return CairoPattern(FcFontMatch(nullptr, wanted.get(), &result));
}

bool has_family(FcPattern* pattern, const char* family) {
    FcChar8* name;
    for (int i = 0; FcPatternGetString(pattern, FC_FAMILY, i, &name) == FcResultMatch; i++) {
        if (FcStrCmpIgnoreCase(name, reinterpret_cast<const FcChar8*>(family)) == 0) return true;
    }
    return false;
}

void set_advances(DrawingFont& font, const char* name) {
    for (const auto& fixed : fixed_advances) {
        if (strcmp(fixed.name, name) != 0) continue;
        for (double& advance : font.advances) advance = fixed.advance;
    }
}

constexpr unsigned blank = 0x20;

// Unhinted: the advances are the face's own, in ems.
void read_glyphs(DrawingFont& font) {
    cairo_matrix_t identity, em;
    cairo_matrix_init_identity(&identity);
    cairo_matrix_init_scale(&em, 1000, 1000);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_scaled_font_t* scaled = cairo_scaled_font_create(font.face, &em, &identity, options);
    FT_Face face = cairo_ft_scaled_font_lock_face(scaled);
    for (unsigned byte = 0; face && byte < 256; byte++) {
        font.glyphs[byte] = is_control(byte) ? 0 : FT_Get_Char_Index(face, unicode_of(byte));
    }
    if (face) cairo_ft_scaled_font_unlock_face(scaled);
    for (unsigned byte = 0; byte < 256; byte++) {
        // A byte without a glyph is as wide as a blank.
        const unsigned long index = font.glyphs[byte] ? font.glyphs[byte] : font.glyphs[blank];
        const cairo_glyph_t glyph = {index, 0, 0};
        cairo_text_extents_t extents;
        cairo_scaled_font_glyph_extents(scaled, &glyph, 1, &extents);
        font.advances[byte] = extents.x_advance / 1000;
        font.above = std::max(font.above, -extents.y_bearing / 1000);
        font.below = std::max(font.below, (extents.y_bearing + extents.height) / 1000);
    }
    cairo_scaled_font_destroy(scaled);
    cairo_font_options_destroy(options);
}

const DrawingFont* make_font(const char* name) {
    CairoPattern pattern = best_match(name);
    if (!pattern || !has_family(pattern.get(), name)) pattern = best_match("monospace");
    if (!pattern) return nullptr;
    auto* font = new DrawingFont{};
    font->face = cairo_ft_font_face_create_for_pattern(pattern.get());
    read_glyphs(*font);
    if (!has_family(pattern.get(), name)) set_advances(*font, name);
    return font;
}

}  // namespace

const DrawingFont* find_mac_roman_font(const char* name) {
    static std::mutex mutex;
    static auto& fonts = *new std::map<std::string, const DrawingFont*>;
    if (!name) return nullptr;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = fonts.find(name);
    if (found != fonts.end()) return found->second;
    return fonts[name] = make_font(name);
}
