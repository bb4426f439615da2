// Decodes the image of file_descriptor with gdk-pixbuf, scaled while loading; see decoder_call.h
// for the call. Without more arguments than CAGE it only says that it has started.
#include <host/glib_owners.h>
#include <errno.h>
#include <gio/gio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "quicklook/decoder/image_loading.h"
#include "quicklook/decoder/number_word.h"
#include "quicklook/decoder/read_input.h"
#include "quicklook/decoder/reply_writer.h"
#include "quicklook/decoder/restrictions.h"

namespace {

using namespace thumbnails;

ssize_t read_some(char* buffer, size_t size) {
    ssize_t count;
    do {
        count = read(file_descriptor, buffer, size);
    } while (count < 0 && errno == EINTR);
    return count;
}

std::string guess(const char* name, const std::vector<char>& start) {
    return files::taken_text(g_content_type_guess(
        name, reinterpret_cast<const guchar*>(start.data()), start.size(), nullptr));
}

// A name may lie, so it counts only when the content tells nothing.
std::string type_of(const char* name, const std::vector<char>& start) {
    const std::string type = guess(nullptr, start);
    const bool says_nothing = type == "application/octet-stream" || type == "text/plain";
    return says_nothing ? guess(name, start) : type;
}

void decode(ImageSize size, const char* name) {
    std::vector<char> start(64 * 1024);
    const ssize_t count = read_some(start.data(), start.size());
    if (count <= 0) return write_reply(Outcome::none);
    start.resize(static_cast<size_t>(count));
    const std::string type = type_of(name, start);
    // Some loaders accept any text as theirs.
    if (type.compare(0, 6, "image/") != 0) return write_unsupported(type);
    const LoadedImage loaded = load_image(start, read_some, size);
    if (loaded.is_unknown) {
        const std::string seen = guess(nullptr, start);
        return write_unsupported(seen == "text/plain" ? seen : type);
    }
    if (!loaded.pixbuf) return write_reply(Outcome::broken);
    write_image(loaded.pixbuf, size, type);
}

}  // namespace

int main(int count, char** words) {
    if (count < 2 || !restrict_decoder(strcmp(words[1], "bubblewrap") == 0)) {
        write_reply(Outcome::none);
    } else if (count < 5) {
        write_reply(Outcome::ready);
    } else {
        decode({{number_word(words[2]), number_word(words[3])}}, words[4]);
    }
    // The kernel frees faster than destructors.
    _exit(0);
}
