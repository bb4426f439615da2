#include "quicklook/decoder/sheet.h"

#include <pango/pangocairo.h>
#include <string.h>

#include <algorithm>
#include <cmath>
#include <new>

#include "quicklook/decoder/reply_writer.h"

namespace thumbnails {

namespace {

struct Shade {
    double red, green, blue;
};

constexpr Shade of(unsigned rgb) {
    return {(rgb >> 16 & 255) / 255.0, (rgb >> 8 & 255) / 255.0, (rgb & 255) / 255.0};
}

struct Paper {
    Shade ground, inks[11], edge;
};

// In the order of Ink.
constexpr Paper light = {
    of(0xffffff),
    {of(0x1f2023), of(0x80838a), of(0x226dec), of(0x8b1a9b), of(0x00627a), of(0x1a7a2e),
     of(0xb5500b), of(0x7c8088), of(0x1750b5), of(0x1a7a2e), of(0xb3261e)},
    of(0xdddee2)};
constexpr Paper dark = {
    of(0x1e1f23),
    {of(0xe4e5ea), of(0x8b8e98), of(0x6fa5ff), of(0xd694e8), of(0x6cc7d6), of(0x8fd18f),
     of(0xeba76a), of(0x868a94), of(0x82b1ff), of(0x8fd18f), of(0xf2938c)},
    of(0x3a3c43)};

const Paper& paper(bool is_dark) { return is_dark ? dark : light; }

void set_colour(cairo_t* cairo, const Shade& shade, double alpha = 1) {
    cairo_set_source_rgba(cairo, shade.red, shade.green, shade.blue, alpha);
}

PangoAttribute* attribute(const Shade& shade) {
    const auto part = [](double value) { return static_cast<guint16>(std::lround(value * 65535)); };
    return pango_attr_foreground_new(part(shade.red), part(shade.green), part(shade.blue));
}

}  // namespace

Sheet::Sheet(const DecoderCall& call)
    : scale_(call.scale),
      is_dark_(call.is_dark),
      width_(call.box.width / call.scale),
      height_(call.box.height / call.scale),
      margin_(std::clamp(std::round(width_ * 0.035), 2.0, 24.0)),
      surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, call.box.width, call.box.height)),
      cairo_(cairo_create(surface_)) {
    if (cairo_status(cairo_) != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();
    set_colour(cairo_, paper(is_dark_).ground);
    cairo_paint(cairo_);
    cairo_scale(cairo_, scale_, scale_);
}

Sheet::~Sheet() {
    cairo_destroy(cairo_);
    cairo_surface_destroy(surface_);
}

double Sheet::text_size() const { return std::clamp(width_ / 48, 8.0, 11.5); }

void Sheet::set_ink(Ink ink) { set_colour(cairo_, paper(is_dark_).inks[static_cast<size_t>(ink)]); }

PangoLayout* Sheet::layout(const std::string& text, const char* family, double size) {
    PangoLayout* layout = pango_cairo_create_layout(cairo_);
    PangoFontDescription* font = pango_font_description_from_string(family);
    pango_font_description_set_absolute_size(font, size * PANGO_SCALE);
    pango_layout_set_font_description(layout, font);
    pango_font_description_free(font);
    pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
    return layout;
}

void Sheet::colour(PangoLayout* layout, const std::vector<Stroke>& strokes) {
    PangoAttrList* list = pango_attr_list_new();
    for (const Stroke& stroke : strokes) {
        PangoAttribute* ink = attribute(paper(is_dark_).inks[static_cast<size_t>(stroke.ink)]);
        ink->start_index = static_cast<guint>(stroke.start);
        ink->end_index = static_cast<guint>(stroke.start + stroke.length);
        pango_attr_list_insert(list, ink);
    }
    pango_layout_set_attributes(layout, list);
    pango_attr_list_unref(list);
}

double Sheet::whole_pixels(double points) const { return std::round(points * scale_) / scale_; }

double Sheet::draw(PangoLayout* layout, double x, double y) {
    cairo_move_to(cairo_, whole_pixels(x), whole_pixels(y));
    pango_cairo_show_layout(cairo_, layout);
    int height = 0;
    pango_layout_get_size(layout, nullptr, &height);
    return static_cast<double>(height) / PANGO_SCALE;
}

double Sheet::draw_line(const std::string& text, const char* family, double size, double x,
                        double y, double room, PangoEllipsizeMode cut) {
    PangoLayout* line = layout(text, family, size);
    pango_layout_set_single_paragraph_mode(line, TRUE);
    pango_layout_set_width(line, static_cast<int>(std::max(1.0, room) * PANGO_SCALE));
    pango_layout_set_ellipsize(line, cut);
    const double height = draw(line, x, y);
    g_object_unref(line);
    return height;
}

double Sheet::width_of(PangoLayout* layout) const {
    int width = 0;
    pango_layout_get_size(layout, &width, nullptr);
    return static_cast<double>(width) / PANGO_SCALE;
}

void Sheet::fade() {
    const double begin = height_ - std::min(height_ / 4, 2.5 * margin_);
    const Shade ground = paper(is_dark_).ground;
    cairo_pattern_t* pattern = cairo_pattern_create_linear(0, begin, 0, height_);
    cairo_pattern_add_color_stop_rgba(pattern, 0, ground.red, ground.green, ground.blue, 0);
    cairo_pattern_add_color_stop_rgba(pattern, 1, ground.red, ground.green, ground.blue, 1);
    cairo_set_source(cairo_, pattern);
    cairo_rectangle(cairo_, 0, begin, width_, height_ - begin);
    cairo_fill(cairo_);
    cairo_pattern_destroy(pattern);
}

// A line of whole pixels around the first `height` rows of pixels.
void Sheet::frame(int height) {
    const int line = std::max(1, static_cast<int>(std::lround(scale_)));
    const int width = cairo_image_surface_get_width(surface_);
    cairo_identity_matrix(cairo_);
    set_colour(cairo_, paper(is_dark_).edge);
    cairo_set_fill_rule(cairo_, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_rectangle(cairo_, 0, 0, width, height);
    cairo_rectangle(cairo_, line, line, width - 2 * line, height - 2 * line);
    cairo_fill(cairo_);
}

void Sheet::write(double end, bool goes_on, const char* type) {
    const int whole = cairo_image_surface_get_height(surface_);
    const int height =
        goes_on ? whole : std::clamp(static_cast<int>(std::ceil(end * scale_)), 1, whole);
    if (goes_on) fade();
    frame(height);
    cairo_surface_flush(surface_);
    Reply reply = {};
    reply.outcome = Outcome::picture;
    reply.width = static_cast<uint32_t>(cairo_image_surface_get_width(surface_));
    reply.height = static_cast<uint32_t>(height);
    strncpy(reply.type, type, sizeof reply.type - 1);
    const unsigned char* from = cairo_image_surface_get_data(surface_);
    const auto stride = static_cast<size_t>(cairo_image_surface_get_stride(surface_));
    std::vector<uint8_t> pixels;
    pixels.reserve(size_t{reply.width} * reply.height * 4);
    for (size_t y = 0; y < reply.height; y++) {
        const auto* row = reinterpret_cast<const uint32_t*>(from + y * stride);
        for (size_t x = 0; x < reply.width; x++) {
            for (const int shift : {16, 8, 0}) {
                pixels.push_back(static_cast<uint8_t>(row[x] >> shift));
            }
            pixels.push_back(255);
        }
    }
    write_reply(reply);
    write_bytes(pixels.data(), pixels.size());
}

}  // namespace thumbnails
