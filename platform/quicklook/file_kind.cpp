#include "quicklook/file_kind.h"

#include <host/glib_owners.h>
#include <gio/gio.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "quicklook/thumbnailers.h"

namespace thumbnails {

namespace {

bool takes(const OwnDecoder& decoder, const std::string& type) {
    const std::string_view taken = decoder.type;
    return taken.ends_with('/') ? type.starts_with(taken) : type == taken;
}

}  // namespace

const OwnDecoder* decoder_of(Route route) {
    const OwnDecoder* found =
        std::find_if(std::begin(decoders), std::end(decoders),
                     [route](const OwnDecoder& decoder) { return decoder.route == route; });
    return found == std::end(decoders) ? nullptr : found;
}

bool is_drawn_for_screen(Route route) {
    return route == Route::text || route == Route::archive || route == Route::font ||
           route == Route::audio;
}

std::string type_by_name(const std::string& path) {
    gboolean uncertain = FALSE;
    const std::string name = path.substr(path.rfind('/') + 1);
    const std::string guess =
        files::taken_text(g_content_type_guess(name.c_str(), nullptr, 0, &uncertain));
    const std::string type = uncertain ? "" : guess;
    return type == "application/octet-stream" ? "" : type;
}

Route route_for(const std::string& type) {
    if (type.empty()) return Route::unknown;
    for (const OwnDecoder& decoder : decoders) {
        if (takes(decoder, type)) return decoder.route;
    }
    if (!thumbnailer_for(type).empty()) return Route::program;
    // Scripts, JSON and the like.
    return g_content_type_is_a(type.c_str(), "text/plain") ? Route::text : Route::none;
}

}  // namespace thumbnails
