// Pictures that are painted more than once: the X server keeps a copy of them. Main thread.
#pragma once

#include <cairo.h>

// Returns what to paint in place of `picture`, an image surface that does not change any more. At
// the first call that is the picture itself. From the second call on it is a copy of the same
// pixels that the X server keeps, if `cairo` draws in a window; the copy goes when the picture
// does. Without the copy the pixels travel at each painting.
cairo_surface_t* server_copy(cairo_surface_t* picture, cairo_t* cairo);
