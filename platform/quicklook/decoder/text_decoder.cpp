// Draws the beginning of the text of file_descriptor, with the colours of its language; see
// decoder_call.h for the call.
#include <cairo.h>
#include <glib-object.h>

#include <algorithm>
#include <cmath>

#include "quicklook/decoder/read_input.h"
#include "quicklook/decoder/sheet.h"
#include "quicklook/decoder/text_colours.h"
#include "quicklook/decoder/text_encoding.h"

namespace {

using namespace thumbnails;

const size_t most_bytes = 64 * 1024;
// Longer lines are cut before anything is done with them: no sheet has room for more.
const size_t longest_line = 6000;
const int tab_columns = 4;
// A sheet of few lines is this part of its width high.
const double least_height = 0.25;

// The next line of the text, without its end.
std::string next_line(const std::string& text, size_t* at) {
    const size_t end = std::min(text.find_first_of("\r\n", *at), text.size());
    std::string line = text.substr(*at, std::min(end - *at, longest_line));
    while (!line.empty() && *at + line.size() < end && (text[*at + line.size()] & 0xc0) == 0x80) {
        line.pop_back();
    }
    const bool is_pair = text.compare(end, 2, "\r\n") == 0;
    *at = end + (is_pair ? 2 : 1);
    return line;
}

class Page {
  public:
    explicit Page(const DecoderCall& call) : sheet_(call), end_(sheet_.margin()) {
        PangoLayout* sample = sheet_.layout(std::string(100, '0'), fixed_family, size());
        column_ = sheet_.width_of(sample) / 100;
        g_object_unref(sample);
    }

    bool is_full() const { return end_ >= sheet_.height(); }
    void add(const std::string& line, const std::vector<Stroke>& strokes) {
        PangoLayout* layout = sheet_.layout(line, fixed_family, size());
        pango_layout_set_width(layout, static_cast<int>(sheet_.text_width() * PANGO_SCALE));
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
        PangoTabArray* tabs = pango_tab_array_new_with_positions(
            1, FALSE, PANGO_TAB_LEFT, static_cast<int>(tab_columns * column_ * PANGO_SCALE));
        pango_layout_set_tabs(layout, tabs);
        pango_tab_array_free(tabs);
        sheet_.colour(layout, strokes);
        sheet_.set_ink(Ink::text);
        end_ += std::ceil(sheet_.draw(layout, sheet_.margin(), end_));
        g_object_unref(layout);
    }
    void write(bool has_more, const char* type) {
        const double end = std::max(end_ + sheet_.margin(), sheet_.width() * least_height);
        sheet_.write(end, has_more || end_ + sheet_.margin() / 2 > sheet_.height(), type);
    }

  private:
    double size() const { return sheet_.text_size(); }

    Sheet sheet_;
    double end_, column_ = 1;
};

void decode(const DecoderCall& call) {
    const std::string bytes = read_start(most_bytes);
    const std::string text = text_of_bytes(bytes);
    if (text.empty()) return write_unsupported("application/octet-stream");
    TextColours colours(call.name, text);
    Page page(call);
    size_t at = 0;
    while (at < text.size() && !page.is_full()) {
        const std::string line = next_line(text, &at);
        page.add(line, colours.next(line));
    }
    page.write(at < text.size(), "text/plain");
}

}  // namespace

int main(int count, char** words) { run_decoder(count, words, decode); }
