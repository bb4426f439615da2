// Pictures that are painted more than once: the X server keeps a copy of them. Main thread.
#pragma once

#include <cairo.h>

// What to paint `picture` from with `cairo`: from the second call on a copy in the server, where
// the target is a window's. Painted from the program's own memory, the pixels travel each time, and
// Xwayland even makes a shared buffer of each. The copy has the same pixels, and goes when the
// picture does, which must not change any more.
cairo_surface_t* server_copy(cairo_surface_t* picture, cairo_t* cairo);
