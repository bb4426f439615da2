// A font's specimen, as the decoder of fonts draws it.
#define main font_decoder
#include "quicklook/decoder/font_decoder.cpp"
#undef main

#include <sanitizer/lsan_interface.h>

#include <utility>

#include "drawn_sheet.h"

namespace {

// The decoder leaves its font to the end of the process. Here the font goes with cairo's last use
// of it, which is later than the decoder's return.
struct Font {
    std::string bytes;
    FT_Face face = nullptr;
    cairo_font_face_t* drawn = nullptr;
};
Font* opened;

void close_font(void* data) {
    auto* font = static_cast<Font*>(data);
    if (font->face) FT_Done_Face(font->face);
    delete font;
}

}  // namespace

extern "C" {

FT_Error __real_FT_Init_FreeType(FT_Library* library);
FT_Error __wrap_FT_Init_FreeType(FT_Library* library) {
    static FT_Library one;
    const FT_Error error = one ? FT_Error{FT_Err_Ok} : __real_FT_Init_FreeType(&one);
    *library = one;
    return error;
}

FT_Error __real_FT_New_Memory_Face(FT_Library, const FT_Byte*, FT_Long, FT_Long, FT_Face*);
FT_Error __wrap_FT_New_Memory_Face(FT_Library library, const FT_Byte* bytes, FT_Long size,
                                   FT_Long index, FT_Face* face) {
    opened = new Font{std::string(bytes, bytes + size)};
    const auto* kept = reinterpret_cast<const FT_Byte*>(opened->bytes.data());
    const FT_Error error = __real_FT_New_Memory_Face(library, kept, size, index, face);
    if (error == 0) opened->face = *face;
    return error;
}

cairo_font_face_t* __real_cairo_ft_font_face_create_for_ft_face(FT_Face, int);
cairo_font_face_t* __wrap_cairo_ft_font_face_create_for_ft_face(FT_Face face, int flags) {
    static const cairo_user_data_key_t key = {};
    cairo_font_face_t* font = __real_cairo_ft_font_face_create_for_ft_face(face, flags);
    fuzz::require(
        cairo_font_face_set_user_data(font, &key, opened, close_font) == CAIRO_STATUS_SUCCESS,
        "cairo has the font");
    return opened->drawn = font;
}

// If FreeType refuses the size, cairo loses a table of 648 bytes. That does no harm in the decoder,
// whose process ends soon after.
void __real_cairo_glyph_extents(cairo_t*, const cairo_glyph_t*, int, cairo_text_extents_t*);
void __wrap_cairo_glyph_extents(cairo_t* cairo, const cairo_glyph_t* glyphs, int count,
                                cairo_text_extents_t* extents) {
    const __lsan::ScopedDisabler lost;
    __real_cairo_glyph_extents(cairo, glyphs, count, extents);
}
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const DecoderCall call = fuzz::call_of(&input, "a.ttf");
    fuzz::expect_answer(input.rest(), call, decode);
    Font* const font = std::exchange(opened, nullptr);
    if (!font) return 0;
    font->drawn ? cairo_font_face_destroy(font->drawn) : close_font(font);
    return 0;
}
