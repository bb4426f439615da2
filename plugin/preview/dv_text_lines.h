// The layout of a text preview: which bytes are in which line. Any thread, but only one at a time
// per text.
#pragma once

#include <stdint.h>

enum { DV_PREVIEW_TEXT_CAPACITY = 10240 };

// A text that is being split into lines.
struct dv_text_layout_t {
    // A buffer of exactly DV_PREVIEW_TEXT_CAPACITY bytes, zero beyond the text. Tabs are expanded
    // in the buffer when the layout reaches their line.
    char* text;
    int32_t length;
    uint32_t columns;  // characters in a line
    uint32_t lines_left;
    int32_t start;  // where the next line starts
};

struct dv_text_line_t {
    int32_t start;
    int32_t count;  // bytes to draw; 0 for an empty line, which still takes up a line
};

// For a square of `side` pixels: 6 pixels per character, 12 per line.
dv_text_layout_t dv_begin_text_layout(char* text, int32_t length, uint32_t side);

// Gives the next line; false when there are no more lines or no more room. A line without a line
// break, either wrapped or the last one, always has all its columns, within the buffer.
bool dv_next_text_line(dv_text_layout_t* layout, dv_text_line_t* line);
