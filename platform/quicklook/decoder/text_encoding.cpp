#include "quicklook/decoder/text_encoding.h"

#include <host/glib_owners.h>
#include <glib.h>
#include <uchardet.h>

namespace thumbnails {

namespace {

struct Mark {
    std::string bytes;
    const char* encoding;
};

// The longer marks come first, because one begins with another.
const Mark marks[] = {{std::string("\xff\xfe\0\0", 4), "UTF-32LE"},
                      {std::string("\0\0\xfe\xff", 4), "UTF-32BE"},
                      {"\xef\xbb\xbf", "UTF-8"},
                      {"\xff\xfe", "UTF-16LE"},
                      {"\xfe\xff", "UTF-16BE"}};

const char sign_for_none[] = "\xef\xbf\xbd";

// The converter passes codes on that no character has.
void append_valid(std::string* text, const char* part, size_t size) {
    const char* const end = part + size;
    while (part < end) {
        const char* after = nullptr;
        g_utf8_validate(part, end - part, &after);
        text->append(part, after);
        if (after < end) *text += *after ? sign_for_none : std::string(1, '\0');
        part = after + 1;
    }
}

// Empty when there is no such encoding. What is no character of it becomes a sign.
std::string converted(const std::string& bytes, const char* encoding) {
    gsize size = 0;
    const GIConv converter = g_iconv_open("UTF-8", encoding);
    if (converter == reinterpret_cast<GIConv>(-1)) return {};
    std::string text;
    const char* from = bytes.data();
    const char* const end = from + bytes.size();
    while (from < end) {
        gsize read = 0;
        const files::TextOwner part(
            g_convert_with_iconv(from, end - from, converter, &read, &size, nullptr));
        if (part) {
            append_valid(&text, part.get(), size);
            from += read;
            if (from < end) break;  // the rest is the beginning of a character
            continue;
        }
        // GLib tells how far the bytes are well.
        const files::TextOwner well(g_convert_with_iconv(from, static_cast<gssize>(read), converter,
                                                         nullptr, &size, nullptr));
        if (well) append_valid(&text, well.get(), size);
        text += sign_for_none;
        from += read + 1;
    }
    g_iconv_close(converter);
    return text;
}

// A text that was cut may end within a character.
bool is_utf8(const std::string& bytes, size_t* whole) {
    const gchar* end = nullptr;
    if (g_utf8_validate(bytes.data(), static_cast<gssize>(bytes.size()), &end)) {
        *whole = bytes.size();
        return true;
    }
    *whole = static_cast<size_t>(end - bytes.data());
    const gunichar rest =
        g_utf8_get_char_validated(end, static_cast<gssize>(bytes.size() - *whole));
    return rest == static_cast<gunichar>(-2);
}

std::string guessed_encoding(const std::string& bytes) {
    uchardet_t guess = uchardet_new();
    uchardet_handle_data(guess, bytes.data(), bytes.size());
    uchardet_data_end(guess);
    const std::string name = uchardet_get_charset(guess);
    uchardet_delete(guess);
    return name;
}

std::string decoded(const std::string& bytes) {
    for (const Mark& mark : marks) {
        if (bytes.starts_with(mark.bytes)) {
            return converted(bytes.substr(mark.bytes.size()), mark.encoding);
        }
    }
    if (bytes.find('\0') != bytes.npos) return {};
    size_t whole = 0;
    if (is_utf8(bytes, &whole)) return bytes.substr(0, whole);
    const std::string guess = guessed_encoding(bytes);
    const std::string text = guess.empty() ? "" : converted(bytes, guess.c_str());
    return text.empty() ? converted(bytes, "WINDOWS-1252") : text;
}

bool is_layout(unsigned char byte) { return byte == '\t' || byte == '\n' || byte == '\r'; }

}  // namespace

std::string text_of_bytes(const std::string& bytes) {
    const std::string text = decoded(bytes);
    std::string shown;
    size_t controls = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const bool is_control = byte < 0x20 || byte == 0x7f;
        if (!is_control || is_layout(byte)) {
            shown += character;
        } else if (byte == '\f') {
            shown += '\n';
        } else {
            // The signs for control characters are in this order.
            controls++;
            shown += "\xe2\x90";
            shown += static_cast<char>(byte == 0x7f ? 0xa1 : 0x80 + byte);
        }
    }
    const bool is_binary = controls > 4 && controls * 10 > text.size();
    return is_binary ? "" : shown;
}

}  // namespace thumbnails
