#include "quicklook/png_file.h"

#include <host/glib_owners.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <string.h>

#include <memory>
#include <string_view>
#include <vector>

namespace thumbnails {

namespace {

const char signature[] = "\x89PNG\r\n\x1a\n";
const size_t signature_size = 8;

uint32_t number_at(const std::string& file, size_t at) {
    uint32_t number = 0;
    for (size_t i = 0; i < 4; i++) number = number << 8 | static_cast<uint8_t>(file[at + i]);
    return number;
}

struct Chunk {
    std::string_view type, content, whole;
};

// No value at the end of the file, even in the middle of a chunk.
std::optional<Chunk> chunk_at(const std::string& file, size_t at) {
    const size_t around = 12;
    if (at + around > file.size()) return {};
    const size_t length = number_at(file, at);
    if (length > file.size() - at - around) return {};
    const std::string_view whole = std::string_view(file).substr(at, length + around);
    return Chunk{whole.substr(4, 4), whole.substr(8, length), whole};
}

// The file without texts, profiles and the like, some of which are compressed and may swell. Empty
// when the file is not whole, because the loader takes the beginning of a picture for all of it.
std::string only_pixels(const std::string& file) {
    std::string kept = file.substr(0, signature_size);
    kept.reserve(file.size());
    for (size_t at = signature_size; const std::optional<Chunk> chunk = chunk_at(file, at);) {
        for (const char* type : {"IHDR", "PLTE", "tRNS", "IDAT", "IEND"}) {
            if (chunk->type == type) kept += chunk->whole;
        }
        if (chunk->type == "IEND") return kept;
        at += chunk->whole.size();
    }
    return {};
}

Picture picture_of(GdkPixbuf* pixbuf) {
    const int channels = gdk_pixbuf_get_n_channels(pixbuf);
    Picture picture{gdk_pixbuf_get_width(pixbuf), gdk_pixbuf_get_height(pixbuf), {}};
    const auto width = static_cast<size_t>(picture.width);
    const auto height = static_cast<size_t>(picture.height);
    picture.pixels.resize(width * height * 4);
    const guint8* pixels = gdk_pixbuf_read_pixels(pixbuf);
    const auto stride = static_cast<size_t>(gdk_pixbuf_get_rowstride(pixbuf));
    for (size_t y = 0; y < height; y++) {
        const guint8* from = pixels + y * stride;
        uint8_t* to = picture.pixels.data() + y * width * 4;
        if (channels == 4) {
            memcpy(to, from, width * 4);
            continue;
        }
        for (size_t x = 0; x < width; x++, from += 3, to += 4) {
            to[0] = from[0];
            to[1] = from[1];
            to[2] = from[2];
            to[3] = 255;
        }
    }
    return picture;
}

bool is_opaque(const Picture& picture) {
    for (size_t i = 3; i < picture.pixels.size(); i += 4) {
        if (picture.pixels[i] != 255) return false;
    }
    return true;
}

// Three bytes a pixel take less room.
std::vector<uint8_t> without_alpha(const Picture& picture) {
    std::vector<uint8_t> colours;
    colours.reserve(picture.pixels.size() / 4 * 3);
    for (size_t i = 0; i < picture.pixels.size(); i += 4) {
        colours.insert(colours.end(), &picture.pixels[i], &picture.pixels[i] + 3);
    }
    return colours;
}

}  // namespace

std::optional<PngHead> png_head(const std::string& file) {
    const size_t header_end = signature_size + 8 + 13 + 4;
    if (file.size() < header_end || memcmp(file.data(), signature, signature_size) != 0) return {};
    if (file.compare(signature_size + 4, 4, "IHDR") != 0) return {};
    const uint32_t width = number_at(file, 16), height = number_at(file, 20);
    if (width == 0 || height == 0 || width > INT32_MAX || height > INT32_MAX) return {};
    PngHead head{static_cast<int>(width), static_cast<int>(height), {}};
    for (size_t at = header_end; const std::optional<Chunk> chunk = chunk_at(file, at);) {
        if (chunk->type == "IDAT") break;
        if (chunk->type == "tEXt") {
            const std::string text(chunk->content);
            const size_t end = text.find('\0');
            if (end != std::string::npos) head.texts[text.substr(0, end)] = text.substr(end + 1);
        }
        at += chunk->whole.size();
    }
    return head;
}

Picture decode_png(const std::string& file) {
    const std::string pixels = only_pixels(file);
    if (pixels.empty()) return {};  // a loader that is not closed leaves its memory behind
    const files::ObjectOwner<GdkPixbufLoader> loader(
        gdk_pixbuf_loader_new_with_type("png", nullptr));
    if (!loader) return {};
    const bool read = gdk_pixbuf_loader_write(
        loader.get(), reinterpret_cast<const guint8*>(pixels.data()), pixels.size(), nullptr);
    const bool closed = gdk_pixbuf_loader_close(loader.get(), nullptr);
    GdkPixbuf* pixbuf = read && closed ? gdk_pixbuf_loader_get_pixbuf(loader.get()) : nullptr;
    return pixbuf ? picture_of(pixbuf) : Picture{};
}

std::string encode_png(const Picture& picture, const PngTexts& texts) {
    const bool opaque = is_opaque(picture);
    const std::vector<uint8_t> pixels = opaque ? without_alpha(picture) : picture.pixels;
    const files::ObjectOwner<GdkPixbuf> pixbuf(gdk_pixbuf_new_from_data(
        pixels.data(), GDK_COLORSPACE_RGB, !opaque, 8, picture.width, picture.height,
        picture.width * (opaque ? 3 : 4), nullptr, nullptr));
    std::vector<std::string> names;
    for (const auto& text : texts) names.push_back("tEXt::" + text.first);
    std::vector<char*> keys, values;
    for (const std::string& name : names) keys.push_back(const_cast<char*>(name.c_str()));
    for (const auto& text : texts) values.push_back(const_cast<char*>(text.second.c_str()));
    keys.push_back(nullptr);
    values.push_back(nullptr);
    gchar* bytes = nullptr;
    gsize size = 0;
    const bool saved = gdk_pixbuf_save_to_bufferv(pixbuf.get(), &bytes, &size, "png", keys.data(),
                                                  values.data(), nullptr);
    const files::TextOwner owner(bytes);
    return saved ? std::string(bytes, size) : std::string();
}

}  // namespace thumbnails
