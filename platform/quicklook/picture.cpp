#include "quicklook/picture.h"

#include <host/glib_owners.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <string.h>

#include <algorithm>
#include <cmath>

namespace thumbnails {

Box fit(Box original, Box box) {
    const double scale = std::min({1.0, static_cast<double>(box.width) / original.width,
                                   static_cast<double>(box.height) / original.height});
    const auto scaled = [scale](int side) {
        return std::max(1, static_cast<int>(std::lround(side * scale)));
    };
    return {std::min(scaled(original.width), box.width),
            std::min(scaled(original.height), box.height)};
}

Picture fitted(Picture picture, Box box) {
    if (!picture || (picture.width <= box.width && picture.height <= box.height)) return picture;
    const Box size = fit({picture.width, picture.height}, box);
    const files::ObjectOwner<GdkPixbuf> large(
        gdk_pixbuf_new_from_data(picture.pixels.data(), GDK_COLORSPACE_RGB, TRUE, 8, picture.width,
                                 picture.height, picture.width * 4, nullptr, nullptr));
    const files::ObjectOwner<GdkPixbuf> small(
        gdk_pixbuf_scale_simple(large.get(), size.width, size.height, GDK_INTERP_BILINEAR));
    Picture result;
    if (!small) return result;
    result = {size.width, size.height, {}};
    const size_t row = static_cast<size_t>(size.width) * 4;
    result.pixels.resize(row * static_cast<size_t>(size.height));
    const guint8* from = gdk_pixbuf_read_pixels(small.get());
    const auto stride = static_cast<size_t>(gdk_pixbuf_get_rowstride(small.get()));
    for (size_t y = 0; y < static_cast<size_t>(size.height); y++) {
        memcpy(result.pixels.data() + y * row, from + y * stride, row);
    }
    return result;
}

}  // namespace thumbnails
