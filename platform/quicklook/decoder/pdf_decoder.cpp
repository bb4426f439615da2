// Draws the first page of the PDF file of file_descriptor with poppler:
//   delvio-decode-pdf CAGE WIDTH HEIGHT NAME
#include <poppler.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "quicklook/decoder/number_word.h"
#include "quicklook/decoder/reply_writer.h"
#include "quicklook/decoder/restrictions.h"
#include "quicklook/picture.h"

namespace {

using namespace thumbnails;

const double largest_page = 1e6;  // points

// At most the page's size at 72 dots an inch.
cairo_surface_t* draw(PopplerPage* page, Box box) {
    double width = 0, height = 0;
    poppler_page_get_size(page, &width, &height);
    if (!(width > 0 && width <= largest_page && height > 0 && height <= largest_page)) {
        return nullptr;
    }
    const double scale = std::min({1.0, box.width / width, box.height / height});
    const Box size = {std::clamp(static_cast<int>(std::lround(width * scale)), 1, box.width),
                      std::clamp(static_cast<int>(std::lround(height * scale)), 1, box.height)};
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, size.width, size.height);
    cairo_t* context = cairo_create(surface);
    cairo_set_source_rgb(context, 1, 1, 1);
    cairo_paint(context);
    cairo_scale(context, size.width / width, size.height / height);
    poppler_page_render(page, context);
    const bool is_drawn = cairo_status(context) == CAIRO_STATUS_SUCCESS;
    cairo_destroy(context);
    cairo_surface_flush(surface);
    return is_drawn ? surface : nullptr;
}

void write_picture(cairo_surface_t* surface) {
    Reply reply = {};
    reply.outcome = Outcome::picture;
    reply.width = static_cast<uint32_t>(cairo_image_surface_get_width(surface));
    reply.height = static_cast<uint32_t>(cairo_image_surface_get_height(surface));
    g_strlcpy(reply.type, "application/pdf", sizeof reply.type);
    const unsigned char* from = cairo_image_surface_get_data(surface);
    const auto stride = static_cast<size_t>(cairo_image_surface_get_stride(surface));
    std::vector<uint8_t> pixels;
    pixels.reserve(size_t{reply.width} * reply.height * 4);
    for (size_t y = 0; y < reply.height; y++) {
        const auto* row = reinterpret_cast<const uint32_t*>(from + y * stride);
        for (size_t x = 0; x < reply.width; x++) {
            const uint32_t colour = row[x];
            for (const int shift : {16, 8, 0}) {
                pixels.push_back(static_cast<uint8_t>(colour >> shift));
            }
            pixels.push_back(255);
        }
    }
    write_reply(reply);
    write_bytes(pixels.data(), pixels.size());
}

void decode(Box box) {
    PopplerDocument* document = poppler_document_new_from_fd(file_descriptor, nullptr, nullptr);
    PopplerPage* page = document ? poppler_document_get_page(document, 0) : nullptr;
    cairo_surface_t* surface = page ? draw(page, box) : nullptr;
    if (surface) return write_picture(surface);
    write_reply(Outcome::broken);
}

}  // namespace

int main(int count, char** words) {
    if (count < 4 || !restrict_decoder(strcmp(words[1], "bubblewrap") == 0)) {
        write_reply(Outcome::none);
    } else {
        decode({number_word(words[2]), number_word(words[3])});
    }
    _exit(0);
}
