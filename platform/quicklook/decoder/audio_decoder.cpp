// Shows the cover of the sound file of file_descriptor; without one, a sheet with what its tags
// say. See decoder_call.h for the call.
#include <cmath>
#include <vector>

#include "quicklook/decoder/audio_cover.h"
#include "quicklook/decoder/image_loading.h"
#include "quicklook/decoder/read_input.h"
#include "quicklook/decoder/sheet.h"

namespace {

using namespace thumbnails;

bool write_cover(const AudioTags& tags, Box box) {
    if (tags.cover.empty()) return false;
    ImageSize size = {box};
    const std::vector<char> bytes(tags.cover.begin(), tags.cover.end());
    const ReadMore no_more = [](char*, size_t) { return ssize_t{0}; };
    const LoadedImage image = load_image(bytes, no_more, size);
    if (image.pixbuf) write_image(image.pixbuf, size, "");
    return image.pixbuf != nullptr;
}

std::string length_text(int seconds) {
    if (seconds <= 0) return "";
    const std::string rest = std::to_string(seconds % 60);
    return std::to_string(seconds / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

// Two notes with a beam, `side` points high.
void draw_notes(Sheet& sheet, double x, double y, double side) {
    cairo_t* cairo = sheet.cairo();
    sheet.set_ink(Ink::accent);
    for (const double left : {0.2, 0.72}) {
        const double lift = left > 0.5 ? -0.08 : 0;
        cairo_save(cairo);
        cairo_translate(cairo, x + left * side, y + (0.84 + lift) * side);
        cairo_rotate(cairo, -0.35);
        cairo_scale(cairo, 0.17 * side, 0.12 * side);
        cairo_arc(cairo, 0, 0, 1, 0, 2 * M_PI);
        cairo_restore(cairo);
        cairo_fill(cairo);
        cairo_rectangle(cairo, x + (left + 0.11) * side, y + (0.2 + lift) * side, 0.05 * side,
                        0.62 * side);
        cairo_fill(cairo);
    }
    cairo_move_to(cairo, x + 0.31 * side, y + 0.14 * side);
    cairo_line_to(cairo, x + 0.88 * side, y + 0.05 * side);
    cairo_line_to(cairo, x + 0.88 * side, y + 0.2 * side);
    cairo_line_to(cairo, x + 0.31 * side, y + 0.29 * side);
    cairo_close_path(cairo);
    cairo_fill(cairo);
}

void write_sheet(const AudioTags& tags, const DecoderCall& call) {
    Sheet sheet(call);
    const double side = sheet.width() / 6, size = sheet.text_size() * 1.35;
    const double left = sheet.margin() * 2 + side;
    const double room = sheet.width() - left - sheet.margin();
    double y = sheet.margin();
    draw_notes(sheet, sheet.margin(), y, side);
    sheet.set_ink(Ink::text);
    y += sheet.draw_line(tags.title.empty() ? call.name : tags.title, sans_family, size, left, y,
                         room);
    sheet.set_ink(Ink::dimmed);
    for (const std::string& line : {tags.artist, tags.album, length_text(tags.seconds)}) {
        if (line.empty()) continue;
        y += size * 0.25;
        y += sheet.draw_line(line, sans_family, size * 0.85, left, y, room);
    }
    sheet.write(std::max(y, sheet.margin() + side) + sheet.margin(), false, "");
}

void decode(const DecoderCall& call) {
    const AudioTags tags = read_audio_tags();
    if (!tags.is_audio) return write_unsupported("");
    if (!write_cover(tags, call.box)) write_sheet(tags, call);
}

}  // namespace

int main(int count, char** words) { run_decoder(count, words, decode); }
