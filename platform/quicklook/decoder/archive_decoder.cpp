// Draws the list of what the archive of file_descriptor contains; see decoder_call.h for the call.
#include <glib.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "quicklook/decoder/archive_contents.h"
#include "quicklook/decoder/read_input.h"
#include "quicklook/decoder/reply_writer.h"
#include "quicklook/decoder/sheet.h"
#include "quicklook/decoder/size_text.h"

namespace {

using namespace thumbnails;

struct Row {
    std::string name;
    const ArchiveEntry* entry;
    int depth;
};

std::string visible(const std::string& name) {
    char* text = g_utf8_make_valid(name.data(), static_cast<gssize>(name.size()));
    std::string shown = text;
    g_free(text);
    for (char& character : shown) {
        if (static_cast<unsigned char>(character) < 0x20 || character == 0x7f) character = '?';
    }
    return shown;
}

// Folders first, then by name.
std::vector<Row> rows_of(const ArchiveFolder& folder, int depth) {
    std::vector<Row> rows;
    for (const auto& [name, entry] : folder.entries) rows.push_back({name, &entry, depth});
    std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
        return (a.entry->folder != nullptr) > (b.entry->folder != nullptr);
    });
    return rows;
}

// The rows for a sheet with room for `most`: folders are opened, the outer ones first, as long as
// their contents fit.
std::vector<Row> listed(const ArchiveFolder& root, size_t most) {
    std::vector<Row> rows = rows_of(root, 0);
    for (bool has_opened = true; has_opened;) {
        has_opened = false;
        for (size_t i = 0; i < rows.size() && rows.size() < most; i++) {
            const ArchiveFolder* folder = rows[i].entry->folder.get();
            const bool is_open = i + 1 < rows.size() && rows[i + 1].depth > rows[i].depth;
            if (!folder || is_open || folder->entries.empty()) continue;
            if (rows.size() + folder->entries.size() > most && rows.size() > 1) continue;
            const std::vector<Row> inner = rows_of(*folder, rows[i].depth + 1);
            rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(i) + 1, inner.begin(),
                        inner.end());
            has_opened = true;
            i += inner.size();
        }
    }
    return rows;
}

// A folder or a sheet of paper with a folded corner, `side` points high.
void draw_sign(Sheet& sheet, bool is_folder, double x, double y, double side) {
    cairo_t* cairo = sheet.cairo();
    const double line = std::max(1.0, side / 12);
    cairo_set_line_width(cairo, line);
    sheet.set_ink(is_folder ? Ink::accent : Ink::dimmed);
    if (is_folder) {
        cairo_move_to(cairo, x, y + side * 0.9);
        cairo_line_to(cairo, x, y + side * 0.15);
        cairo_line_to(cairo, x + side * 0.35, y + side * 0.15);
        cairo_line_to(cairo, x + side * 0.45, y + side * 0.3);
        cairo_line_to(cairo, x + side, y + side * 0.3);
        cairo_line_to(cairo, x + side, y + side * 0.9);
        cairo_close_path(cairo);
        cairo_fill(cairo);
        return;
    }
    const double left = x + side * 0.15, right = x + side * 0.85, fold = side * 0.28;
    cairo_move_to(cairo, left, y + side * 0.05);
    cairo_line_to(cairo, right - fold, y + side * 0.05);
    cairo_line_to(cairo, right, y + side * 0.05 + fold);
    cairo_line_to(cairo, right, y + side * 0.95);
    cairo_line_to(cairo, left, y + side * 0.95);
    cairo_close_path(cairo);
    cairo_stroke(cairo);
}

// The text at the right edge. Returns its width.
double draw_at_right(Sheet& sheet, const std::string& text, double size, double y) {
    PangoLayout* layout = sheet.layout(text, sans_family, size);
    const double width = sheet.width_of(layout);
    sheet.set_ink(Ink::dimmed);
    sheet.draw(layout, sheet.width() - sheet.margin() - width, y);
    g_object_unref(layout);
    return width;
}

void draw_row(Sheet& sheet, const Row& row, const std::string& words, double size, double y) {
    const bool is_folder = row.entry->folder != nullptr;
    const double indent = sheet.margin() + std::min(row.depth, 8) * size * 1.3;
    const std::string note = is_folder ? std::to_string(row.entry->folder->entries.size())
                                       : size_text(row.entry->size, words);
    const double used = draw_at_right(sheet, note, size, y);
    draw_sign(sheet, is_folder, indent, y + size * 0.12, size * 1.05);
    const double left = indent + size * 1.6;
    const double room = sheet.width() - sheet.margin() - used - size - left;
    sheet.set_ink(Ink::text);
    sheet.draw_line(visible(row.name), sans_family, size, left, y, room, PANGO_ELLIPSIZE_MIDDLE);
}

void decode(const DecoderCall& call) {
    const ArchiveContents contents = read_archive();
    if (contents.root.entries.empty()) {
        // An empty archive has a list too, but there is nothing in it to show.
        return write_unsupported("");
    }
    Sheet sheet(call);
    const double size = sheet.text_size() * 1.1, height = std::round(size * 1.75);
    const double end = sheet.height() - sheet.margin();
    // A flat sheet has no room between its margins.
    const auto most = static_cast<size_t>(std::max(0.0, (end - sheet.margin()) / height));
    double y = sheet.margin();
    bool has_more = !contents.is_whole;
    for (const Row& row : listed(contents.root, most)) {
        if (y > sheet.height()) {
            has_more = true;
            break;
        }
        draw_row(sheet, row, call.size_words, size, y);
        y += height;
    }
    if (!contents.is_whole && y < end) {
        sheet.set_ink(Ink::dimmed);
        sheet.draw_line("…", sans_family, size, sheet.margin(), y, sheet.text_width());
        y += height;
    }
    sheet.write(y + sheet.margin() - size * 0.4, has_more && y >= end, "");
}

}  // namespace

int main(int count, char** words) { run_decoder(count, words, decode); }
