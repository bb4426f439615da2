#include "preview/dv_text_lines.h"

#include <string.h>

#include <algorithm>

namespace {

constexpr uint32_t margin = 4, character_width = 6, line_height = 12;
constexpr int32_t tab_width = 4;
// The last position where a tab can become more than one space.
constexpr int32_t last_expanded_tab = DV_PREVIEW_TEXT_CAPACITY - 6;

uint32_t cells(uint32_t side, uint32_t cell) { return side < margin ? 0 : (side - margin) / cell; }

// Replaces the tab at `i` with spaces up to the next tab stop.
void expand_tab(dv_text_layout_t* layout, int32_t i, int32_t column) {
    char* tab = layout->text + i;
    *tab = ' ';
    if (i > last_expanded_tab) return;
    const int32_t spaces = tab_width - column % tab_width;
    if (spaces > 1) memmove(tab + spaces, tab + 1, DV_PREVIEW_TEXT_CAPACITY - (i + spaces));
    memset(tab, ' ', spaces);
    layout->length = std::min<int32_t>(layout->length + spaces - 1, DV_PREVIEW_TEXT_CAPACITY);
}

// The number of bytes that form the line break at `i`; 0 when there is no break.
int32_t break_length(const dv_text_layout_t* layout, int32_t i) {
    const char byte = layout->text[i];
    const char next = i + 1 < layout->length ? layout->text[i + 1] : 0;
    if (byte == '\n') return 1;
    if (byte != '\r') return 0;
    return next == '\n' ? 2 : 1;
}

}  // namespace

dv_text_layout_t dv_begin_text_layout(char* text, int32_t length, uint32_t side) {
    dv_text_layout_t layout = {};
    layout.text = text;
    layout.length = std::min<int32_t>(length, DV_PREVIEW_TEXT_CAPACITY);
    layout.columns = cells(side, character_width);
    layout.lines_left = cells(side, line_height);
    return layout;
}

bool dv_next_text_line(dv_text_layout_t* layout, dv_text_line_t* line) {
    if (layout->lines_left == 0 || layout->start >= layout->length) return false;
    layout->lines_left--;
    const int32_t start = layout->start, columns = static_cast<int32_t>(layout->columns);
    line->start = start;
    for (int32_t column = 0; column < columns && start + column < layout->length; column++) {
        const int32_t i = start + column;
        if (layout->text[i] == '\t') expand_tab(layout, i, column);
        const int32_t broken = break_length(layout, i);
        if (broken == 0) continue;
        line->count = column;
        layout->start = i + broken;
        return true;
    }
    line->count = std::min<int32_t>(columns, DV_PREVIEW_TEXT_CAPACITY - start);
    layout->start = start + columns;
    return true;
}
