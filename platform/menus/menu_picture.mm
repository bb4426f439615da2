#include <host/menu_picture.h>

#include <algorithm>

#include "menus/menu_run.h"

namespace {

Area united(const Area& one, const Area& other) {
    const int left = std::min(one.left, other.left), top = std::min(one.top, other.top);
    return {left, top, std::max(one.right(), other.right()) - left,
            std::max(one.bottom(), other.bottom()) - top};
}

bool bounds(const MenuRun& run, Area* whole) {
    bool found = false;
    for (const auto& level : run.levels()) {
        if (!level->is_shown()) continue;
        *whole = found ? united(*whole, level->panel()) : level->panel();
        found = true;
    }
    return found;
}

}  // namespace

BOOL write_picture_of_open_menus(NSString* path, BOOL shadow) {
    MenuRun* run = MenuRun::current();
    Area whole = {};
    if (!run) return NO;
    run->synchronize();  // shows what has changed since the last turn
    if (!bounds(*run, &whole)) return NO;
    const int room = shadow ? run->style().look.shadow_extent : 0;
    cairo_surface_t* surface = cairo_image_surface_create(
        CAIRO_FORMAT_ARGB32, whole.width + 2 * room, whole.height + 2 * room);
    cairo_t* cairo = cairo_create(surface);
    for (const auto& level : run->levels()) {
        level->draw_picture(cairo, level->panel().left - whole.left + room,
                            level->panel().top - whole.top + room, shadow);
    }
    cairo_destroy(cairo);
    const char* file = [path fileSystemRepresentation];
    const bool written = file && cairo_surface_write_to_png(surface, file) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy(surface);
    return written;
}
