// Makes a picture of a file, from Quick Look or from its text. Any thread; the caller releases it.
#pragma once

#include <Foundation/Foundation.h>

#include "preview/dv_preview.h"

// Quick Look's picture of the file, within a square of `side`; if there is none, a picture of its
// text in a square of the current size. The text is read from the element's own path, or from the
// URL's path without an element. Null when there is neither.
CGImageRef dv_create_picture(delvio_t* state, NSURL* url, CGFloat side, dv_tree_t* elem);
