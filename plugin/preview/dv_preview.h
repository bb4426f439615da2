// Text previews: the first bytes of a file in monospaced letters, black on white, in a square of
// `preview_size` pixels. All previews share one bitmap, which the record owns and the images read:
// the next preview changes the pixels of every earlier one. Any thread; drawn one at a time.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <stdint.h>

struct delvio_t;
struct dv_tree_t;

// Makes the context, or makes it again when `preview_size` has changed. With an impossible size (0,
// or more than 8192) there is no context.
void dv_create_preview_context(delvio_t* state);
void dv_dispose_preview_context(delvio_t* state);

// A placeholder: always null.
CGImageRef dv_create_preview();

// The caller releases the images. Null when there is no context.
// `text` is a buffer of DV_PREVIEW_TEXT_CAPACITY bytes, zero beyond `length`; its tabs are
// expanded.
CGImageRef dv_render_text_preview(delvio_t* state, char* text, int32_t length);
// Null for a null path, for a file that cannot be opened, and for a pipe or a device, which is
// never opened.
CGImageRef dv_create_text_preview_from_path(delvio_t* state, const char* path);
CGImageRef dv_create_text_preview(delvio_t* state, dv_tree_t* elem);
