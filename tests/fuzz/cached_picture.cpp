// A picture in the desktop's cache, which any program may have put there: the host decodes it in
// its own process.
#include <gdk-pixbuf/gdk-pixbuf.h>

#include "input.h"
#include "quicklook/png_file.h"
#include "require.h"

using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace thumbnails;
    const std::string file = fuzz::Input(data, size).rest();
    const std::optional<PngHead> head = png_head(file);
    if (!head) return 0;
    require(head->width > 0 && head->height > 0, "a size");
    for (const auto& [name, text] : head->texts) {
        require(name.size() + text.size() < file.size(), "texts are in the file");
    }
    // The cache asks for no larger ones.
    if (head->width > 256 || head->height > 256) return 0;
    const Picture picture = decode_png(file);
    if (!picture) return 0;
    require(picture.width == head->width && picture.height == head->height, "the size of the head");
    require(picture.pixels.size() == size_t(picture.width) * size_t(picture.height) * 4,
            "all of it");
    const std::optional<PngHead> again = png_head(encode_png(picture, {{"a", "b"}}));
    require(again && again->width == picture.width && again->texts.at("a") == "b", "a round trip");
    return 0;
}
