// Draws a specimen of the font of file_descriptor; see decoder_call.h for the call.
#include <cairo-ft.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include <glib.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "quicklook/decoder/read_input.h"
#include "quicklook/decoder/reply_writer.h"
#include "quicklook/decoder/sheet.h"

namespace {

using namespace thumbnails;

const size_t largest_font = 64 * 1024 * 1024;

const char* const latin[] = {"ABCDEFGHIJKLM", "NOPQRSTUVWXYZ", "abcdefghijklm", "nopqrstuvwxyz",
                             "0123456789 &?!@"};
const size_t characters_of_line = 13, lines_of_specimen = 5;

using Line = std::vector<gunichar>;

Line line_of(const char* text) {
    Line line;
    for (; *text; text = g_utf8_next_char(text)) line.push_back(g_utf8_get_char(text));
    return line;
}

bool has(FT_Face face, gunichar character) { return FT_Get_Char_Index(face, character) != 0; }

bool is_letter(gunichar character) {
    return g_unichar_validate(character) && g_unichar_isalpha(character);
}

bool is_sign(gunichar character) {
    return g_unichar_validate(character) && !g_unichar_ismark(character) &&
           (g_unichar_isgraph(character) || character >= 0xe000);
}

// The first characters of the font that are wanted.
std::vector<Line> first_lines(FT_Face face, bool (*is_wanted)(gunichar)) {
    std::vector<Line> lines;
    FT_UInt glyph = 0;
    for (FT_ULong character = FT_Get_First_Char(face, &glyph); glyph != 0;
         character = FT_Get_Next_Char(face, character, &glyph)) {
        const auto shown = static_cast<gunichar>(character);
        if (!is_wanted(shown)) continue;
        if (lines.empty() || lines.back().size() == characters_of_line) {
            if (lines.size() == lines_of_specimen) break;
            lines.emplace_back();
        }
        lines.back().push_back(shown);
    }
    return lines;
}

// The Latin alphabet; of a font without it, its first letters; of a font without letters, its first
// signs.
std::vector<Line> lines_of(FT_Face face) {
    std::vector<Line> lines;
    if (has(face, 'A') && has(face, 'a')) {
        for (const char* text : latin) lines.push_back(line_of(text));
        return lines;
    }
    lines = first_lines(face, is_letter);
    return lines.size() > 1 ? lines : first_lines(face, is_sign);
}

std::vector<cairo_glyph_t> glyphs_of(FT_Face face, cairo_t* cairo, const Line& line) {
    std::vector<cairo_glyph_t> glyphs;
    double x = 0;
    for (const gunichar character : line) {
        cairo_glyph_t glyph = {FT_Get_Char_Index(face, character), x, 0};
        cairo_text_extents_t extents;
        cairo_glyph_extents(cairo, &glyph, 1, &extents);
        if (std::isfinite(extents.x_advance)) x += extents.x_advance;
        glyphs.push_back(glyph);
    }
    return glyphs;
}

// Draws the line such that it is as wide as the sheet's text at most. Returns its height.
double draw_line(Sheet& sheet, FT_Face face, const Line& line, double size, double y) {
    cairo_t* cairo = sheet.cairo();
    cairo_set_font_size(cairo, size);
    std::vector<cairo_glyph_t> glyphs = glyphs_of(face, cairo, line);
    cairo_text_extents_t extents;
    cairo_glyph_extents(cairo, glyphs.data(), static_cast<int>(glyphs.size()), &extents);
    const double wide = extents.x_bearing + extents.width;
    if (!std::isfinite(wide) || !std::isfinite(extents.height)) return 0;
    if (wide > sheet.text_width()) {
        size *= sheet.text_width() / wide;
        cairo_set_font_size(cairo, size);
        glyphs = glyphs_of(face, cairo, line);
    }
    const double baseline = y + size;
    for (cairo_glyph_t& glyph : glyphs) {
        glyph.x += sheet.margin();
        glyph.y = baseline;
    }
    cairo_show_glyphs(cairo, glyphs.data(), static_cast<int>(glyphs.size()));
    return size * 1.35;
}

std::string text_of(const char* name) {
    if (!name) return "";
    char* text = g_utf8_make_valid(name, -1);
    std::string shown = text;
    g_free(text);
    return shown;
}

FT_Face open_font(const std::string& bytes) {
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    if (FT_Init_FreeType(&library) != 0) return nullptr;
    const auto* data = reinterpret_cast<const FT_Byte*>(bytes.data());
    if (FT_New_Memory_Face(library, data, static_cast<FT_Long>(bytes.size()), 0, &face) != 0) {
        return nullptr;
    }
    if (!face->charmap && face->num_charmaps > 0) FT_Set_Charmap(face, face->charmaps[0]);
    return face;
}

double draw_title(Sheet& sheet, FT_Face face, const std::string& file) {
    const std::string family = text_of(face->family_name), style = text_of(face->style_name);
    const double size = sheet.text_size() * 1.2;
    double y = sheet.margin();
    sheet.set_ink(Ink::text);
    y += sheet.draw_line(family.empty() ? file : family, sans_family, size, sheet.margin(), y,
                         sheet.text_width());
    sheet.set_ink(Ink::dimmed);
    y += sheet.draw_line(style, sans_family, size * 0.85, sheet.margin(), y, sheet.text_width());
    return y + size;
}

void decode(const DecoderCall& call) {
    const std::string bytes = read_start(largest_font);
    FT_Face face = bytes.size() < largest_font ? open_font(bytes) : nullptr;
    if (!face) return write_unsupported("");
    const std::vector<Line> lines = lines_of(face);
    if (lines.empty()) return write_unsupported("");
    Sheet sheet(call);
    double y = draw_title(sheet, face, call.name);
    sheet.set_ink(Ink::text);
    cairo_font_face_t* font = cairo_ft_font_face_create_for_ft_face(face, 0);
    cairo_set_font_face(sheet.cairo(), font);
    const bool is_latin = lines[0][0] == 'A';
    if (is_latin) y += draw_line(sheet, face, line_of("Aa Gg"), sheet.width() / 6, y);
    for (const Line& line : lines) y += draw_line(sheet, face, line, sheet.width() / 12.5, y);
    if (cairo_status(sheet.cairo()) != CAIRO_STATUS_SUCCESS) return write_reply(Outcome::broken);
    sheet.write(y + sheet.margin(), false, "");
}

}  // namespace

int main(int count, char** words) { run_decoder(count, words, decode); }
