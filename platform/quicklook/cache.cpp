#include "quicklook/cache.h"

#include <host/glib_owners.h>
#include <fcntl.h>
#include <glib.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <optional>

#include "quicklook/plain_file.h"
#include "quicklook/png_file.h"
#include "quicklook/thumbnailers.h"

namespace thumbnails {

namespace {

struct Flavour {
    const char* name;
    int side;
};

const Flavour flavours[] = {{"normal", 128}, {"large", 256}, {"x-large", 512}, {"xx-large", 1024}};
const size_t largest_file = 8 * 1024 * 1024;
const char failures[] = "fail/delvio-1";
// A file that has just been written may not be whole yet.
const int64_t settled_after = 3;

std::string cache_folder() { return std::string(g_get_user_cache_dir()) + "/thumbnails"; }

std::string uri_of(const std::string& path) {
    return files::taken_text(g_filename_to_uri(path.c_str(), nullptr, nullptr));
}

std::string entry_name(const std::string& uri) {
    return files::taken_text(g_compute_checksum_for_string(G_CHECKSUM_MD5, uri.c_str(), -1)) +
           ".png";
}

bool says(const PngTexts& texts, const char* key, int64_t value) {
    const auto text = texts.find(key);
    return text != texts.end() && strtoll(text->second.c_str(), nullptr, 10) == value;
}

bool is_about(const PngTexts& texts, const Subject& subject, const std::string& uri) {
    const auto said = texts.find("Thumb::URI");
    if (said == texts.end() || said->second != uri) return false;
    if (!says(texts, "Thumb::MTime", subject.modified)) return false;
    return !texts.count("Thumb::Size") || says(texts, "Thumb::Size", subject.size);
}

// Whether the file's own picture is no larger than the thumbnail.
bool is_whole(const PngHead& head, int side) {
    const auto width = head.texts.find("Thumb::Image::Width");
    const auto height = head.texts.find("Thumb::Image::Height");
    if (width != head.texts.end() && height != head.texts.end()) {
        return says(head.texts, "Thumb::Image::Width", head.width) &&
               says(head.texts, "Thumb::Image::Height", head.height);
    }
    return head.width < side && head.height < side;
}

// Empty when the entry is missing, belongs to another state of the file, or is too small for the
// box.
Picture picture_in(const Flavour& flavour, const std::string& name, const std::string& uri,
                   const Subject& subject, Box box) {
    const std::string path = cache_folder() + "/" + flavour.name + "/" + name;
    const std::optional<std::string> file = read_plain_file(path, largest_file);
    if (!file) return {};
    const std::optional<PngHead> head = png_head(*file);
    if (!head || !is_about(head->texts, subject, uri)) return {};
    if (head->width > flavour.side || head->height > flavour.side) return {};
    const bool large_enough = flavour.side >= std::max(box.width, box.height);
    if (!large_enough && !is_whole(*head, flavour.side)) return {};
    return fitted(decode_png(*file), box);
}

bool make_folder(const std::string& path) { return g_mkdir_with_parents(path.c_str(), 0700) == 0; }

// Replaces a file such that readers see either the old file or the whole new one.
void replace_file(const std::string& folder, const std::string& name, const std::string& bytes) {
    if (bytes.empty() || !make_folder(folder)) return;
    std::string temporary = folder + "/" + name + ".XXXXXX";
    const int file = mkostemp(temporary.data(), O_CLOEXEC);  // mode 0600
    if (file < 0) return;
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = write(file, bytes.data() + done, bytes.size() - done);
        if (count <= 0) break;
        done += static_cast<size_t>(count);
    }
    const bool written = close(file) == 0 && done == bytes.size();
    if (!written || rename(temporary.c_str(), (folder + "/" + name).c_str()) != 0) {
        unlink(temporary.c_str());
    }
}

PngTexts texts_of(const Subject& subject, const std::string& uri) {
    return {{"Software", "Delvio"},
            {"Thumb::URI", uri},
            {"Thumb::MTime", std::to_string(subject.modified)},
            {"Thumb::Size", std::to_string(subject.size)}};
}

const Flavour* flavour_for(Box box) {
    const int side = std::max(box.width, box.height);
    for (const Flavour& flavour : flavours) {
        if (flavour.side >= side) return &flavour;
    }
    return nullptr;
}

}  // namespace

Picture cached_picture(const Subject& subject, Box box) {
    const std::string uri = uri_of(subject.path);
    if (uri.empty()) return {};
    const std::string name = entry_name(uri);
    const int side = std::max(box.width, box.height);
    for (const Flavour& flavour : flavours) {
        if (flavour.side < side) continue;
        if (Picture picture = picture_in(flavour, name, uri, subject, box)) return picture;
    }
    for (const Flavour& flavour : flavours) {
        if (flavour.side >= side) break;
        if (Picture picture = picture_in(flavour, name, uri, subject, box)) return picture;
    }
    return {};
}

Box cache_box(Box box) {
    const Flavour* flavour = flavour_for(box);
    return flavour ? Box{flavour->side, flavour->side} : box;
}

void store_picture(const Subject& subject, const Picture& picture, Box box, const Origin& origin) {
    const Flavour* flavour = flavour_for(box);
    const std::string uri = uri_of(subject.path);
    if (!flavour || uri.empty() || is_in_cache(subject.path)) return;
    PngTexts texts = texts_of(subject, uri);
    if (!origin.type.empty()) texts["Thumb::Mimetype"] = origin.type;
    if (origin.width > 0 && origin.height > 0) {
        texts["Thumb::Image::Width"] = std::to_string(origin.width);
        texts["Thumb::Image::Height"] = std::to_string(origin.height);
    }
    replace_file(cache_folder() + "/" + flavour->name, entry_name(uri), encode_png(picture, texts));
}

bool has_failed(const Subject& subject) {
    const std::string uri = uri_of(subject.path);
    const std::string path = cache_folder() + "/" + failures + "/" + entry_name(uri);
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return false;
    if (status.st_mtime < thumbnailers_changed_at()) return false;
    const std::optional<std::string> file = read_plain_file(path, largest_file);
    const std::optional<PngHead> head = file ? png_head(*file) : std::nullopt;
    return head && is_about(head->texts, subject, uri);
}

void store_failure(const Subject& subject) {
    const std::string uri = uri_of(subject.path);
    if (uri.empty() || is_in_cache(subject.path)) return;
    if (time(nullptr) - subject.modified < settled_after) return;
    const Picture dot{1, 1, {0, 0, 0, 0}};
    replace_file(cache_folder() + "/" + failures, entry_name(uri),
                 encode_png(dot, texts_of(subject, uri)));
}

bool is_in_cache(const std::string& path) {
    const std::string folder = cache_folder() + "/";
    return path.compare(0, folder.size(), folder) == 0;
}

}  // namespace thumbnails
