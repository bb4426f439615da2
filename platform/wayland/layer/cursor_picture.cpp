#include "wayland/layer/cursor_picture.h"

#include <X11/Xcursor/Xcursor.h>
#include <stdlib.h>

#include <algorithm>

#include "wayland/layer/shared_picture.h"

namespace {

constexpr int usual_size = 24;

int wanted_size() {
    const char* text = getenv("XCURSOR_SIZE");
    const long size = text ? strtol(text, nullptr, 10) : 0;
    return size > 0 && size <= 512 ? static_cast<int>(size) : usual_size;
}

}  // namespace

CursorPicture::~CursorPicture() {
    if (surface_) wl_surface_destroy(surface_);
    if (buffer_) wl_buffer_destroy(buffer_);
}

void CursorPicture::show(wl_pointer* pointer, uint32_t serial, int scale) {
    if (!surface_) make(std::max(1, scale));
    wl_pointer_set_cursor(pointer, serial, surface_, hot_x_, hot_y_);
}

void CursorPicture::make(int scale) {
    surface_ = wl_compositor_create_surface(compositor_.compositor);
    XcursorImage* image =
        XcursorLibraryLoadImage("left_ptr", getenv("XCURSOR_THEME"), wanted_size() * scale);
    if (!image) return;
    buffer_ = new_shared_picture(compositor_.shm, static_cast<int>(image->width),
                                 static_cast<int>(image->height), image->pixels);
    // A buffer's size must be a multiple of its scale.
    const bool divides = image->width % scale == 0 && image->height % scale == 0;
    const int used = divides ? scale : 1;
    hot_x_ = static_cast<int>(image->xhot) / used;
    hot_y_ = static_cast<int>(image->yhot) / used;
    wl_surface_set_buffer_scale(surface_, used);
    wl_surface_attach(surface_, buffer_, 0, 0);
    wl_surface_damage(surface_, 0, 0, INT32_MAX, INT32_MAX);
    wl_surface_commit(surface_);
    XcursorImageDestroy(image);
}
