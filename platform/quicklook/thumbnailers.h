// The thumbnailer programs that are installed: XDG data folders, thumbnailers/*.thumbnailer. Any
// thread.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

namespace thumbnails {

// The command for files of this content type, still with its %i, %u, %o and %s; the program itself
// as an absolute path. Empty when there is none.
std::vector<std::string> thumbnailer_for(const std::string& type);

// When a thumbnailer was last added or taken away, in seconds.
int64_t thumbnailers_changed_at();

}  // namespace thumbnails
