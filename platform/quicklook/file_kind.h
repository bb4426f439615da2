// Which way a file's thumbnail is made, by its content type. Any thread.
#pragma once

#include <string>

namespace thumbnails {

enum class Route {
    text,     // has none: the text itself is shown
    none,     // nothing that is installed can make one
    image,    // the image decoder
    pdf,      // the PDF decoder
    program,  // a thumbnailer that is installed for the type
    unknown,  // the content must be looked at
};

// Our own decoders. The program of one is delvio-decode- and its name.
struct OwnDecoder {
    Route route;
    const char* name;
    const char* type;  // one content type, or with a slash at the end all that begin with it
};

inline constexpr OwnDecoder decoders[] = {
    {Route::image, "image", "image/"},
    {Route::pdf, "pdf", "application/pdf"},
};

// The decoder of a route; null for a route without one.
const OwnDecoder* decoder_of(Route route);

// The content type that the name alone tells, as GIO knows it; empty when it does not tell.
std::string type_by_name(const std::string& path);

// The way for a content type. It is Route::unknown only for an empty type.
Route route_for(const std::string& type);

}  // namespace thumbnails
