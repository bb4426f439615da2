// A picture of a file, by either of the two ways. Any thread; the caller releases the images.
#pragma once

#include <Foundation/Foundation.h>

#include "preview/dv_preview.h"

// What Quick Look has for the file, within `size`; null when it has none.
CGImageRef dv_create_thumbnail(NSURL* url, CGSize size);
// The file's text, in a square of the size now set.
CGImageRef dv_create_text_picture(delvio_t* state, const char* path);
CGImageRef dv_create_text_picture(delvio_t* state, dv_tree_t* elem);
