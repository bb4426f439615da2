#include "quicklook/decoder/image_loading.h"

#include <host/glib_owners.h>

#include "quicklook/decoder/reply_writer.h"

namespace thumbnails {

namespace {

// Larger images need more memory than a picture of this size is worth. JPEG and SVG are exempt:
// their loaders never hold all pixels at once.
const int64_t most_pixels = 128 * 1024 * 1024;

bool holds_all_pixels(GdkPixbufLoader* loader) {
    GdkPixbufFormat* format = gdk_pixbuf_loader_get_format(loader);
    const std::string name =
        files::taken_text(format ? gdk_pixbuf_format_get_name(format) : nullptr);
    return name != "jpeg" && name != "svg";
}

void size_known(GdkPixbufLoader* loader, int width, int height, gpointer data) {
    auto* size = static_cast<ImageSize*>(data);
    size->original = {width, height};
    if (holds_all_pixels(loader) && int64_t{width} * height > most_pixels) {
        size->is_too_large = true;
        return;
    }
    const Box scaled = fit(size->original, size->box);
    if (scaled.width != width || scaled.height != height) {
        gdk_pixbuf_loader_set_size(loader, scaled.width, scaled.height);
    }
}

// The picture upright, as the camera was held, and no larger than the box: some loaders only come
// near the box.
GdkPixbuf* finished(GdkPixbuf* pixbuf, ImageSize& size) {
    GdkPixbuf* upright = gdk_pixbuf_apply_embedded_orientation(pixbuf);
    if (!upright) return nullptr;
    const Box now = {gdk_pixbuf_get_width(upright), gdk_pixbuf_get_height(upright)};
    if ((now.width > now.height) !=
        (gdk_pixbuf_get_width(pixbuf) > gdk_pixbuf_get_height(pixbuf))) {
        size.original = {size.original.height, size.original.width};
    }
    if (now.width <= size.box.width && now.height <= size.box.height) return upright;
    const Box scaled = fit(now, size.box);
    return gdk_pixbuf_scale_simple(upright, scaled.width, scaled.height, GDK_INTERP_BILINEAR);
}

}  // namespace

LoadedImage load_image(const std::vector<char>& start, const ReadMore& read_more, ImageSize& size) {
    GdkPixbufLoader* loader = gdk_pixbuf_loader_new();
    g_signal_connect(loader, "size-prepared", G_CALLBACK(size_known), &size);
    GError* error = nullptr;
    std::vector<char> buffer = start;
    auto count = static_cast<ssize_t>(start.size());
    bool is_well = true;
    while (count > 0 && is_well && !size.is_too_large) {
        is_well = gdk_pixbuf_loader_write(loader, reinterpret_cast<const guint8*>(buffer.data()),
                                          static_cast<gsize>(count), &error);
        buffer.resize(64 * 1024);
        if (is_well && !size.is_too_large) count = read_more(buffer.data(), buffer.size());
    }
    LoadedImage loaded;
    if (size.is_too_large) return loaded;
    is_well = gdk_pixbuf_loader_close(loader, error ? nullptr : &error) && is_well;
    loaded.is_unknown = g_error_matches(error, GDK_PIXBUF_ERROR, GDK_PIXBUF_ERROR_UNKNOWN_TYPE);
    GdkPixbuf* pixbuf = is_well && count == 0 ? gdk_pixbuf_loader_get_pixbuf(loader) : nullptr;
    if (pixbuf) loaded.pixbuf = finished(pixbuf, size);
    return loaded;
}

void write_image(const GdkPixbuf* pixbuf, const ImageSize& size, const std::string& type) {
    Reply reply = {};
    reply.outcome = Outcome::picture;
    reply.width = static_cast<uint32_t>(gdk_pixbuf_get_width(pixbuf));
    reply.height = static_cast<uint32_t>(gdk_pixbuf_get_height(pixbuf));
    reply.original_width = static_cast<uint32_t>(size.original.width);
    reply.original_height = static_cast<uint32_t>(size.original.height);
    g_strlcpy(reply.type, type.c_str(), sizeof reply.type);
    const int channels = gdk_pixbuf_get_n_channels(pixbuf);
    const auto stride = static_cast<size_t>(gdk_pixbuf_get_rowstride(pixbuf));
    const guint8* from = gdk_pixbuf_read_pixels(pixbuf);
    std::vector<uint8_t> pixels(size_t{reply.width} * reply.height * 4);
    uint8_t* to = pixels.data();
    for (size_t y = 0; y < reply.height; y++) {
        const guint8* pixel = from + y * stride;
        for (size_t x = 0; x < reply.width; x++, pixel += channels, to += 4) {
            to[0] = pixel[0];
            to[1] = pixel[1];
            to[2] = pixel[2];
            to[3] = channels == 4 ? pixel[3] : 255;
        }
    }
    write_reply(reply);
    write_bytes(pixels.data(), pixels.size());
}

}  // namespace thumbnails
