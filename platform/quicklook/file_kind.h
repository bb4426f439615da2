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

// The content type that the name alone tells, as GIO knows it; empty when it does not tell.
std::string type_by_name(const std::string& path);

// The way for a content type. It is Route::unknown only for an empty type.
Route route_for(const std::string& type);

}  // namespace thumbnails
