// What the tags of a sound file say. One thread.
#pragma once

#include <string>

namespace thumbnails {

struct AudioTags {
    bool is_audio = false;
    std::string cover;  // an image file; may be empty
    std::string title, artist, album;
    int seconds = 0;
};

// Reads the tags of file_descriptor.
AudioTags read_audio_tags();

}  // namespace thumbnails
