// A picture of a file, by either of the two ways. Any thread; the caller releases it.
#pragma once

#include <Foundation/Foundation.h>

#include "preview/dv_preview.h"

// What Quick Look has for the file, within a square of `side`; else its text, in a square of the
// size now set. The text is read from the element's own path, or from the URL's without an element.
// Null when there is neither.
CGImageRef dv_create_picture(delvio_t* state, NSURL* url, CGFloat side, dv_tree_t* elem);
