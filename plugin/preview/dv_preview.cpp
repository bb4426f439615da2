#include "preview/dv_preview.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <mutex>

#include "preview/dv_data_provider.h"
#include "preview/dv_text_lines.h"
#include "support/dv_log.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

constexpr uint32_t largest_side = 8192;  // no screen is larger
constexpr uint32_t pixel_bytes = 4;
constexpr double font_size = 9, character_spacing = 0.6, left_margin = 2;
constexpr int32_t first_baseline = 14, line_height = 12;

// Guards the context and its bitmap. Two previews made at the same time must not draw over each
// other, and neither may draw into a context that the other replaces.
std::mutex drawing;

uint32_t bitmap_size(uint32_t side) { return side * side * pixel_bytes; }

void prepare_context(CGContextRef context, CGRect square) {
    CGContextSetRGBStrokeColor(context, 0, 0, 0, 1);
    CGContextSetRGBFillColor(context, 1, 1, 1, 1);
    CGContextFillRect(context, square);
    CGContextStrokeRect(context, square);
    CGContextSetRGBFillColor(context, 0, 0, 0, 1);
    CGContextSetShouldAntialias(context, false);
    CGContextSelectFont(context, "Monaco", font_size, kCGEncodingMacRoman);
    CGContextSetCharacterSpacing(context, character_spacing);
    CGContextSetTextDrawingMode(context, kCGTextFill);
}

void draw_lines(CGContextRef context, dv_text_layout_t layout, int32_t baseline) {
    dv_text_line_t line;
    for (; dv_next_text_line(&layout, &line); baseline -= line_height) {
        if (line.count == 0) continue;
        CGContextShowTextAtPoint(context, left_margin, baseline, layout.text + line.start,
                                 static_cast<size_t>(line.count));
    }
}

// An image of the bitmap's current pixels, without a copy.
CGImageRef create_image(void* bitmap, uint32_t side) {
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGDataProviderRef provider = create_data_provider(bitmap, bitmap_size(side), 0, 1);
    CGImageRef image =
        CGImageCreate(side, side, 8, 32, side * pixel_bytes, space, kCGImageAlphaPremultipliedFirst,
                      provider, nullptr, false, kCGRenderingIntentDefault);
    CGColorSpaceRelease(space);
    CGDataProviderRelease(provider);
    return image;
}

// Opening a pipe waits for its other end, and opening a device may have effects.
bool is_safe_to_open(const char* path) {
    struct stat status;
    if (stat(path, &status) != 0) return false;
    return S_ISREG(status.st_mode) || S_ISDIR(status.st_mode);
}

// Uses read(), because a buffered stream reads more than it is asked for. Returns the bytes read.
int32_t read_start(int file, char* text) {
    int32_t length = 0;
    while (length < DV_PREVIEW_TEXT_CAPACITY) {
        const ssize_t count = read(file, text + length, DV_PREVIEW_TEXT_CAPACITY - length);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        length += static_cast<int32_t>(count);
    }
    return length;
}

}  // namespace

void dv_create_preview_context(delvio_t* state) {
    const std::lock_guard<std::mutex> lock(drawing);
    const uint32_t side = state->preview_size;
    if (state->preview_context && side == state->preview_context_size) return;
    // The previous bitmap is not freed: images that read it may still be shown.
    CGContextRelease(state->preview_context);
    state->preview_context = nullptr;
    state->preview_context_size = side;
    state->preview_rect = CGRectMake(0, 0, side, side);
    state->preview_bitmap = side <= largest_side ? calloc(bitmap_size(side), 1) : nullptr;
    if (!state->preview_bitmap) return;
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    state->preview_context =
        CGBitmapContextCreate(state->preview_bitmap, side, side, 8, side * pixel_bytes, space,
                              kCGImageAlphaPremultipliedFirst);
    CGColorSpaceRelease(space);
}

void dv_dispose_preview_context(delvio_t* state) {
    const std::lock_guard<std::mutex> lock(drawing);
    if (state->preview_context) CGContextRelease(state->preview_context);
    free(state->preview_bitmap);
    if (state->preview_image) CGImageRelease(state->preview_image);
    state->preview_context = nullptr;
    state->preview_bitmap = nullptr;
    state->preview_image = nullptr;
}

CGImageRef dv_create_preview() { return nullptr; }

CGImageRef dv_render_text_preview(delvio_t* state, char* text, int32_t length) {
    const std::lock_guard<std::mutex> lock(drawing);
    if (!state->preview_context) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Can't render text preview - no context!\n");
        }
        return nullptr;
    }
    // The setting may have changed since the context was made.
    const uint32_t side = state->preview_context_size;
    CGContextSaveGState(state->preview_context);
    prepare_context(state->preview_context, state->preview_rect);
    draw_lines(state->preview_context, dv_begin_text_layout(text, length, side),
               static_cast<int32_t>(side) - first_baseline);
    CGContextRestoreGState(state->preview_context);
    return create_image(state->preview_bitmap, side);
}

CGImageRef dv_create_text_preview_from_path(delvio_t* state, const char* path) {
    if (!path) return nullptr;
    const int file = is_safe_to_open(path) ? open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC) : -1;
    if (file < 0) {
        printf("Delvio: Failed to open file for preview generation: %s\n", path);
        return nullptr;
    }
    char* text = static_cast<char*>(calloc(DV_PREVIEW_TEXT_CAPACITY, 1));
    const int32_t length = text ? read_start(file, text) : 0;
    close(file);
    if (!text) return nullptr;
    CGImageRef image = dv_render_text_preview(state, text, length);
    free(text);
    return image;
}

CGImageRef dv_create_text_preview(delvio_t* state, dv_tree_t* elem) {
    char* path = dv_path_for_elem(elem, 0, 0);
    if (!path) {
        printf("Delvio: Failed to get path for element during text preview generation.\n");
        return nullptr;
    }
    CGImageRef image = dv_create_text_preview_from_path(state, path);
    free(path);
    return image;
}
