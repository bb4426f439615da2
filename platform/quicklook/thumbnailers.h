// The thumbnailer programs that are installed, as thumbnailers/*.thumbnailer in the XDG data
// folders declare them. Any thread.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

namespace thumbnails {

// The command for files of this content type, with its %i, %u, %o and %s not yet replaced and the
// program as an absolute path. Empty when there is none.
std::vector<std::string> thumbnailer_for(const std::string& type);

// When a thumbnailer was last installed or removed, in seconds.
int64_t thumbnailers_changed_at();

}  // namespace thumbnails
