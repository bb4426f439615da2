// The layout of a text preview: which bytes stand in which line. Any thread, one at a time a text.
#pragma once

#include <stdint.h>

enum { DV_PREVIEW_TEXT_CAPACITY = 10240 };

// A text on its way into lines.
struct dv_text_layout_t {
    // A buffer of exactly DV_PREVIEW_TEXT_CAPACITY bytes, zero beyond the text. Tabs are expanded
    // in it as their line is reached.
    char* text;
    int32_t length;
    uint32_t columns;  // a line's characters
    uint32_t lines_left;
    int32_t start;  // of the next line
};

struct dv_text_line_t {
    int32_t start;
    int32_t count;  // bytes to draw; 0 for an empty line, which still takes its place
};

// For a square of `side` pixels: 6 pixels a character, 12 a line.
dv_text_layout_t dv_begin_text_layout(char* text, int32_t length, uint32_t side);

// Gives the next line; false when there is none, or no room for it. A line that no break ends, be
// it wrapped or the last one, has all its columns, within the buffer.
bool dv_next_text_line(dv_text_layout_t* layout, dv_text_line_t* line);
