// Which way a file's thumbnail is made, by its content type. Any thread.
#pragma once

#include <string>

namespace thumbnails {

enum class Route {
    none,     // nothing that is installed can make one
    text,     // the text decoder
    archive,  // the archive decoder, and so on
    font,
    audio,
    image,    // the image decoder
    pdf,      // the PDF decoder
    program,  // a thumbnailer that is installed for the type
    unknown,  // the content must be looked at
};

// Our own decoders, each with one row for each of its types; the first row that takes a type
// counts. The program of a decoder is delvio-decode- and its name.
struct OwnDecoder {
    Route route;
    const char* name;
    const char* type;  // one content type, or with a slash at the end all that begin with it
};

inline constexpr OwnDecoder decoders[] = {
    {Route::image, "image", "image/"},
    {Route::pdf, "pdf", "application/pdf"},
    {Route::text, "text", "text/"},
    // Lists of pieces of music are texts.
    {Route::text, "text", "audio/x-mpegurl"},
    {Route::text, "text", "audio/mpegurl"},
    {Route::text, "text", "audio/x-scpls"},
    {Route::text, "text", "audio/x-ms-asx"},
    {Route::audio, "audio", "audio/"},
    {Route::font, "font", "font/"},
    {Route::font, "font", "application/x-font-type1"},
    {Route::font, "font", "application/x-font-ttf"},
    {Route::font, "font", "application/x-font-otf"},
    {Route::font, "font", "application/x-font-pcf"},
    {Route::font, "font", "application/x-font-bdf"},
    {Route::font, "font", "application/vnd.ms-opentype"},
    {Route::font, "font", "application/font-woff"},
    {Route::archive, "archive", "application/zip"},
    {Route::archive, "archive", "application/x-tar"},
    {Route::archive, "archive", "application/x-compressed-tar"},
    {Route::archive, "archive", "application/x-bzip-compressed-tar"},
    {Route::archive, "archive", "application/x-bzip2-compressed-tar"},
    {Route::archive, "archive", "application/x-xz-compressed-tar"},
    {Route::archive, "archive", "application/x-lzma-compressed-tar"},
    {Route::archive, "archive", "application/x-zstd-compressed-tar"},
    {Route::archive, "archive", "application/x-lz4-compressed-tar"},
    {Route::archive, "archive", "application/x-tarz"},
    {Route::archive, "archive", "application/x-7z-compressed"},
    {Route::archive, "archive", "application/vnd.rar"},
    {Route::archive, "archive", "application/x-rar"},
    {Route::archive, "archive", "application/x-cpio"},
    {Route::archive, "archive", "application/x-archive"},
    {Route::archive, "archive", "application/x-deb"},
    {Route::archive, "archive", "application/vnd.debian.binary-package"},
    {Route::archive, "archive", "application/x-rpm"},
    {Route::archive, "archive", "application/x-cd-image"},
    {Route::archive, "archive", "application/vnd.efi.iso"},
    {Route::archive, "archive", "application/vnd.ms-cab-compressed"},
    {Route::archive, "archive", "application/x-lha"},
    {Route::archive, "archive", "application/x-java-archive"},
    {Route::archive, "archive", "application/java-archive"},
    {Route::archive, "archive", "application/vnd.android.package-archive"},
    {Route::archive, "archive", "application/x-xpinstall"},
};

// Whether pictures of this route are drawn for one scale and appearance of the screen. Nobody else
// could use them, so they are not kept in the cache.
bool is_drawn_for_screen(Route route);

// The decoder of a route; null for a route without one.
const OwnDecoder* decoder_of(Route route);

// The content type that the name alone tells, as GIO knows it; empty when it does not tell.
std::string type_by_name(const std::string& path);

// The way for a content type. It is Route::unknown only for an empty type.
Route route_for(const std::string& type);

}  // namespace thumbnails
