#include "sample_files.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gio/gio.h>

#include <stdexcept>
#include <vector>

namespace test {

namespace {

GdkPixbuf* red_and_blue(int width, int height, bool is_clear) {
    GdkPixbuf* picture = gdk_pixbuf_new(GDK_COLORSPACE_RGB, is_clear, 8, width, height);
    gdk_pixbuf_fill(picture, 0xff0000ff);
    GdkPixbuf* right = gdk_pixbuf_new_subpixbuf(picture, width / 2, 0, width - width / 2, height);
    gdk_pixbuf_fill(right, 0x0000ffff);
    g_object_unref(right);
    if (!is_clear) return picture;
    GdkPixbuf* low = gdk_pixbuf_new_subpixbuf(picture, 0, height / 2, width, height - height / 2);
    gdk_pixbuf_fill(low, 0x00000000);
    g_object_unref(low);
    return picture;
}

std::string little(uint32_t number, int bytes = 4) {
    std::string text;
    for (int i = 0; i < bytes; i++) text += static_cast<char>(number >> (8 * i));
    return text;
}

std::string big(uint32_t number) {
    std::string text;
    for (int i = 3; i >= 0; i--) text += static_cast<char>(number >> (8 * i));
    return text;
}

std::string riff(const std::string& name, const std::string& content) {
    return name + little(static_cast<uint32_t>(content.size())) + content +
           std::string(content.size() % 2, '\0');
}

uint32_t checksum(const std::string& bytes) {
    uint32_t sum = 0xffffffff;
    for (const char byte : bytes) {
        sum ^= static_cast<uint8_t>(byte);
        for (int bit = 0; bit < 8; bit++) sum = sum >> 1 ^ (sum & 1 ? 0xedb88320 : 0);
    }
    return ~sum;
}

std::string png_chunk(const std::string& type, const std::string& content) {
    return big(static_cast<uint32_t>(content.size())) + type + content +
           big(checksum(type + content));
}

// zlib's form of `count` times `block`.
std::string compressed(const std::string& block, uint32_t count) {
    GZlibCompressor* compressor = g_zlib_compressor_new(G_ZLIB_COMPRESSOR_FORMAT_ZLIB, 1);
    std::string result;
    std::vector<char> buffer(64 * 1024);
    for (uint32_t i = 0; i <= count; i++) {
        const bool is_end = i == count;
        size_t used = 0;
        for (bool is_done = false; !is_done;) {
            gsize read = 0, written = 0;
            const GConverterResult state = g_converter_convert(
                G_CONVERTER(compressor), block.data() + used, is_end ? 0 : block.size() - used,
                buffer.data(), buffer.size(),
                is_end ? G_CONVERTER_INPUT_AT_END : G_CONVERTER_NO_FLAGS, &read, &written, nullptr);
            if (state == G_CONVERTER_ERROR) throw std::runtime_error("zlib failed");
            result.append(buffer.data(), written);
            used += read;
            is_done = is_end ? state == G_CONVERTER_FINISHED : used == block.size();
        }
    }
    g_object_unref(compressor);
    return result;
}

}  // namespace

std::string image_bytes(int width, int height, const char* kind, bool is_clear) {
    GdkPixbuf* picture = red_and_blue(width, height, is_clear);
    gchar* bytes = nullptr;
    gsize size = 0;
    const bool saved = gdk_pixbuf_save_to_buffer(picture, &bytes, &size, kind, nullptr, nullptr);
    g_object_unref(picture);
    if (!saved) throw std::runtime_error("gdk-pixbuf writes no " + std::string(kind));
    const std::string content(bytes, size);
    g_free(bytes);
    return content;
}

std::string svg_bytes(int width, int height) {
    const std::string w = std::to_string(width), h = std::to_string(height),
                      half = std::to_string(width / 2);
    return "<?xml version=\"1.0\"?><svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + w +
           "\" height=\"" + h + "\"><rect width=\"" + half + "\" height=\"" + h +
           "\" fill=\"#f00\"/><rect x=\"" + half + "\" width=\"" + half + "\" height=\"" + h +
           "\" fill=\"#00f\"/></svg>";
}

std::string pdf_bytes(int width, int height, const std::string& content) {
    const std::string objects[] = {
        "<</Type/Catalog/Pages 2 0 R>>",
        "<</Type/Pages/Kids[3 0 R]/Count 1>>",
        "<</Type/Page/Parent 2 0 R/MediaBox[0 0 " + std::to_string(width) + " " +
            std::to_string(height) + "]/Contents 4 0 R/Resources<<>>>>",
        "<</Length " + std::to_string(content.size()) + ">>stream\n" + content + "\nendstream",
    };
    std::string file = "%PDF-1.4\n";
    std::string table = "xref\n0 5\n0000000000 65535 f \n";
    int number = 1;
    for (const std::string& object : objects) {
        char line[32];
        snprintf(line, sizeof line, "%010zu 00000 n \n", file.size());
        table += line;
        file += std::to_string(number++) + " 0 obj" + object + "endobj\n";
    }
    const size_t start = file.size();
    return file + table + "trailer<</Size 5/Root 1 0 R>>\nstartxref\n" + std::to_string(start) +
           "\n%%EOF\n";
}

std::string film_bytes(int width, int height, int frames) {
    const std::string frame = image_bytes(width, height, "jpeg");
    const auto w = static_cast<uint32_t>(width), h = static_cast<uint32_t>(height);
    const auto count = static_cast<uint32_t>(frames), size = static_cast<uint32_t>(frame.size());
    const uint32_t microseconds = 100000;
    const std::string main_header = little(microseconds) + little(size * 10) + little(0) +
                                    little(0x10) + little(count) + little(0) + little(1) +
                                    little(size) + little(w) + little(h) + std::string(16, '\0');
    const std::string stream_header = "vidsMJPG" + little(0) + little(0) + little(0) +
                                      little(microseconds) + little(1000000) + little(0) +
                                      little(count) + little(size) + little(0xffffffff) +
                                      little(0) + little(0) + little(0);
    const std::string format = little(40) + little(w) + little(h) + little(1, 2) + little(24, 2) +
                               "MJPG" + little(w * h * 3) + std::string(16, '\0');
    const std::string stream =
        riff("LIST", "strl" + riff("strh", stream_header) + riff("strf", format));
    std::string pictures, index;
    for (int i = 0; i < frames; i++) {
        index += "00dc" + little(0x10) + little(static_cast<uint32_t>(pictures.size()) + 4) +
                 little(size);
        pictures += riff("00dc", frame);
    }
    return riff("RIFF", "AVI " + riff("LIST", "hdrl" + riff("avih", main_header) + stream) +
                            riff("LIST", "movi" + pictures) + riff("idx1", index));
}

std::string white_png_bytes(uint32_t width, uint32_t height) {
    const std::string row = '\0' + std::string((width + 7) / 8, '\xff');
    return "\x89PNG\r\n\x1a\n" +
           png_chunk("IHDR", big(width) + big(height) + std::string("\x01\0\0\0\0", 5)) +
           png_chunk("IDAT", compressed(row, height)) + png_chunk("IEND", "");
}

std::string with_swelling_texts(const std::string& png, int count, uint32_t size) {
    const uint32_t block = 1000;
    const std::string text = compressed(std::string(block, 'x'), size / block);
    const std::string chunk = png_chunk("zTXt", std::string("Comment\0\0", 9) + text);
    std::string result = png;
    const size_t header_end = 33;
    for (int i = 0; i < count; i++) result.insert(header_end, chunk);
    return result;
}

}  // namespace test
