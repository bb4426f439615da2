// Thumbnails of files, from the cache or newly made by the helper program. Knows nothing about
// menus.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "quicklook/cache.h"
#include "quicklook/file_kind.h"
#include "quicklook/helper_program.h"
#include "quicklook/picture.h"
#include "quicklook/turns.h"

namespace thumbnails {

struct Settings {
    std::string helper_folder;       // of the helper programs; empty: only the cache is used
    bool use_bubblewrap = true;      // where it works; else the helper restricts itself alone
    double stat_seconds = 3;         // for the first look at a file
    double decoder_seconds = 10;     // for an image or a PDF
    double program_seconds = 20;     // for a thumbnailer program
    unsigned processor_seconds = 8;  // for a decoder
    unsigned memory = 1024;          // for a helper program, in megabytes of address space
    size_t at_once = 2, at_most = 8;
    std::string size_words;  // see size_words.h
};

class ThumbnailMaker {
  public:
    explicit ThumbnailMaker(Settings settings);

    // A picture that fits the box and is not enlarged. Empty when the file has none: folders, empty
    // files, files that nothing installed can show, and files that are damaged or take too long.
    // Texts and lists are drawn for `screen`. `path` is absolute. Any thread, several at once. A
    // call waits for its turn; the newest call goes first.
    Picture make(const std::string& path, Box box, const Screen& screen = {});

    // Decodes an image, and nothing else. The cache is neither read nor filled, and the file is not
    // looked at before.
    Picture decode_image(const std::string& path, Box box);

    // Whether the helper runs in bubblewrap here, for decoders or for thumbnailer programs. Each is
    // tried once.
    bool bubblewrap_works(bool for_programs);

    // Whether the helper and what it becomes start and answer, without a file.
    bool helper_starts(bool in_bubblewrap, bool for_programs) const;

    // How many calls wait for a turn.
    size_t waiting() { return turns_.waiting(); }

  private:
    struct Request;
    Picture find(const std::string& path, Box box, const Screen& screen);
    Picture decode(Request& request);
    Answer decode_by_content(Request& request);
    Answer run(Route route, const Request& request);
    std::vector<std::string> words(Route route, const Request& request);
    std::string helper() const;
    void note_failure(const Request& request, const Answer& answer);
    bool timed_out_before(const Subject& subject);

    const Settings settings_;
    Turns turns_;
    std::once_flag bubblewrap_tried_[2];  // for decoders, for programs
    bool bubblewrap_works_[2] = {};
    std::mutex lock_;
    std::map<std::string, Subject> timed_out_;  // by path
};

// The maker with the settings for everyday use; never destroyed.
ThumbnailMaker& shared_thumbnail_maker();

}  // namespace thumbnails
