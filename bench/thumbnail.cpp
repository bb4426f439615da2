// A thumbnail of a photograph compared with gdk-pixbuf's own scaled load of it, and a thumbnail
// from the cache compared with reading and decoding that PNG file.
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <stdlib.h>

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

#include "bench/harness.h"
#include "bench/test_folder.h"
#include "quicklook/background.h"
#include "quicklook/thumbnail_maker.h"

namespace {

namespace fs = std::filesystem;
using thumbnails::Box;

const double fresh_limit = 1.3, cached_limit = 2;
const int width = 4000, height = 3000, rounds = 25;
const Box box = {256, 256};

void expect(bool is_true, const char* what) {
    if (!is_true) throw std::runtime_error(what);
}

// 12 megapixels of soft shapes and noise, 3 to 4 megabytes.
void write_photograph(const std::string& path) {
    std::mt19937 random(1);
    GdkPixbuf* picture = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, width, height);
    guchar* pixels = gdk_pixbuf_get_pixels(picture);
    const int stride = gdk_pixbuf_get_rowstride(picture);
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            guchar* pixel = pixels + y * stride + x * 3;
            const unsigned noise = random();
            pixel[0] = static_cast<guchar>(x * 200 / width + static_cast<int>(noise & 15));
            pixel[1] = static_cast<guchar>(y * 200 / height + static_cast<int>(noise >> 8 & 15));
            pixel[2] = static_cast<guchar>((x + y) / 40 % 200 + static_cast<int>(noise >> 16 & 15));
        }
    }
    expect(gdk_pixbuf_save(picture, path.c_str(), "jpeg", nullptr, "quality", "88", nullptr),
           "cannot write the photograph");
    g_object_unref(picture);
}

void load(GdkPixbuf* picture) {
    expect(picture, "gdk-pixbuf failed");
    g_object_unref(picture);
}

std::string cache_folder() { return std::string(g_get_user_cache_dir()) + "/thumbnails"; }

std::string only_entry() {
    const fs::directory_iterator entries(cache_folder() + "/large");
    return entries->path();
}

void race_fresh(thumbnails::ThumbnailMaker& maker, const std::string& photograph) {
    const bool is_caged = maker.bubblewrap_works(false);
    bench::Race race(
        std::string("thumbnail of a JPEG file, in ") + (is_caged ? "bubblewrap" : "plain"),
        width * height);
    race.add("gdk-pixbuf, scaled load in this process", [&] {
        load(gdk_pixbuf_new_from_file_at_scale(photograph.c_str(), box.width, box.height, TRUE,
                                               nullptr));
    });
    race.add("empty start of the helper",
             [&] { expect(maker.helper_starts(is_caged, false), "the helper does not start"); });
    race.add(
        "a thumbnail, not yet in the cache",
        [&] { expect(maker.make(photograph, box).width == 256, "no thumbnail"); },
        [] {
            thumbnails::wait_for_background();
            fs::remove_all(cache_folder());
        });
    race.run(rounds);
    race.print();
    const double start = race.seconds("empty start of the helper");
    const double own = race.seconds("a thumbnail, not yet in the cache") - start;
    bench::check("thumbnail less the helper's start to gdk-pixbuf's scaled load",
                 own / race.seconds("gdk-pixbuf, scaled load in this process"), fresh_limit);
}

void race_cached(thumbnails::ThumbnailMaker& maker, const std::string& photograph) {
    expect(maker.make(photograph, box).width == 256, "no thumbnail");
    thumbnails::wait_for_background();
    const std::string entry = only_entry();
    bench::Race race("thumbnail from the cache", 0);
    race.add("read and decode the PNG file",
             [&] { load(gdk_pixbuf_new_from_file(entry.c_str(), nullptr)); });
    race.add("a thumbnail from the cache",
             [&] { expect(maker.make(photograph, box).width == 256, "no thumbnail"); });
    race.run(rounds * 8);
    race.print();
    bench::check(
        "thumbnail from the cache to decoding its PNG file",
        race.seconds("a thumbnail from the cache") / race.seconds("read and decode the PNG file"),
        cached_limit);
}

}  // namespace

int main() {
    const bench::TestFolder folder(0);
    const std::string photograph = folder.path() + "/photograph.jpg";
    write_photograph(photograph);
    thumbnails::Settings settings;
    settings.helper_folder = thumbnails::helper_folder();
    thumbnails::ThumbnailMaker maker(settings);
    race_fresh(maker, photograph);
    race_cached(maker, photograph);
    return bench::status();
}
