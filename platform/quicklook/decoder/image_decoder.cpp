// Decodes the image of file_descriptor with gdk-pixbuf, scaled while loading:
//   delvio-decode-image CAGE WIDTH HEIGHT NAME
// CAGE is bubblewrap or plain. Without more arguments it only says that it has started.
#include <host/glib_owners.h>
#include <errno.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gio/gio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "quicklook/decoder/reply_writer.h"
#include "quicklook/decoder/restrictions.h"
#include "quicklook/picture.h"

namespace {

using namespace thumbnails;

// Larger images need more memory than a picture of this size is worth. JPEG and SVG are exempt:
// their loaders never hold all pixels at once.
const int64_t most_pixels = 128 * 1024 * 1024;

struct Size {
    Box box;
    Box original;
    bool is_too_large = false;
};

bool holds_all_pixels(GdkPixbufLoader* loader) {
    GdkPixbufFormat* format = gdk_pixbuf_loader_get_format(loader);
    const std::string name =
        files::taken_text(format ? gdk_pixbuf_format_get_name(format) : nullptr);
    return name != "jpeg" && name != "svg";
}

void size_known(GdkPixbufLoader* loader, int width, int height, gpointer data) {
    auto* size = static_cast<Size*>(data);
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

ssize_t read_some(char* buffer, size_t size) {
    ssize_t count;
    do {
        count = read(file_descriptor, buffer, size);
    } while (count < 0 && errno == EINTR);
    return count;
}

struct Loaded {
    GdkPixbuf* pixbuf = nullptr;  // owned; null on failure
    bool is_unknown = false;
};

Loaded load(const std::vector<char>& start, Size& size) {
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
        if (is_well && !size.is_too_large) count = read_some(buffer.data(), buffer.size());
    }
    Loaded loaded;
    if (size.is_too_large) return loaded;
    is_well = gdk_pixbuf_loader_close(loader, error ? nullptr : &error) && is_well;
    loaded.is_unknown = g_error_matches(error, GDK_PIXBUF_ERROR, GDK_PIXBUF_ERROR_UNKNOWN_TYPE);
    if (is_well && count == 0) loaded.pixbuf = gdk_pixbuf_loader_get_pixbuf(loader);
    return loaded;
}

// The picture upright, as the camera was held, and no larger than the box: some loaders only come
// near the box.
GdkPixbuf* finished(GdkPixbuf* pixbuf, Size& size) {
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

void write_picture(const GdkPixbuf* pixbuf, const Size& size, const std::string& type) {
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

void write_unsupported(const std::string& type) {
    Reply reply = {};
    reply.outcome = Outcome::unsupported;
    g_strlcpy(reply.type, type.c_str(), sizeof reply.type);
    write_reply(reply);
}

std::string guess(const char* name, const std::vector<char>& start) {
    return files::taken_text(g_content_type_guess(
        name, reinterpret_cast<const guchar*>(start.data()), start.size(), nullptr));
}

// A name may lie, so it counts only when the content tells nothing.
std::string type_of(const char* name, const std::vector<char>& start) {
    const std::string type = guess(nullptr, start);
    const bool says_nothing = type == "application/octet-stream" || type == "text/plain";
    return says_nothing ? guess(name, start) : type;
}

void decode(Size size, const char* name) {
    std::vector<char> start(64 * 1024);
    const ssize_t count = read_some(start.data(), start.size());
    if (count <= 0) return write_reply(Outcome::none);
    start.resize(static_cast<size_t>(count));
    const std::string type = type_of(name, start);
    // Some loaders accept any text as theirs.
    if (type.compare(0, 6, "image/") != 0) return write_unsupported(type);
    const Loaded loaded = load(start, size);
    if (loaded.is_unknown) return write_unsupported(type);
    const GdkPixbuf* pixbuf = loaded.pixbuf ? finished(loaded.pixbuf, size) : nullptr;
    if (!pixbuf) return write_reply(Outcome::broken);
    write_picture(pixbuf, size, type);
}

}  // namespace

int main(int count, char** words) {
    if (count < 2 || !restrict_decoder(strcmp(words[1], "bubblewrap") == 0)) {
        write_reply(Outcome::none);
    } else if (count < 5) {
        write_reply(Outcome::ready);
    } else {
        decode({{atoi(words[2]), atoi(words[3])}, {}}, words[4]);
    }
    // The kernel frees faster than destructors.
    _exit(0);
}
