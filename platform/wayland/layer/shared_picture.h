// Pixels in memory that the compositor shares.
#pragma once

#include <stdint.h>
#include <wayland-client.h>

// A buffer of this size, with these pixels (premultiplied ARGB), or wholly transparent without any.
// Null when there is no memory. The caller destroys it.
wl_buffer* new_shared_picture(wl_shm* shm, int width, int height, const uint32_t* pixels);
