#include "carbon/link_targets.h"

#include <host/glib_owners.h>
#include <errno.h>
#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

#include "carbon/file_references.h"
#include "corefoundation/silent_disks.h"

namespace files {

namespace {

// True when the text names its file plainly: no "." or ".." and no doubled or last slash.
bool is_plain(const std::string& path) {
    size_t start = 0;
    while (start <= path.size()) {
        size_t end = path.find('/', start);
        if (end == std::string::npos) end = path.size();
        const std::string part = path.substr(start, end - start);
        if (part == "." || part == ".." || (part.empty() && start > 0)) return false;
        start = end + 1;
    }
    return true;
}

// The path that a link in `file`'s folder means by `text`. The last component is not followed when
// it is a name.
std::string target_path(const File& file, const std::string& text) {
    const bool absolute = text[0] == '/';
    const std::string joined =
        absolute ? text : std::string(file.folder(), file.folder_length()) + text;
    if (is_plain(text)) return joined;

    const size_t last = joined.find_last_not_of('/');
    if (last == std::string::npos) return "/";
    const size_t slash = joined.rfind('/', last);
    const std::string name = joined.substr(slash + 1, last - slash);
    if (name == "." || name == "..") return real_path(joined);
    const std::string folder = real_path(joined.substr(0, slash + 1));
    if (folder.empty()) return folder;
    return folder == "/" ? folder + name : folder + "/" + name;
}

}  // namespace

std::string real_path(const std::string& path) {
    if (is_silent_target(path)) return errno = ETIMEDOUT, std::string();
    const TextOwner result(realpath(path.c_str(), nullptr));
    return result ? result.get() : std::string();
}

std::string link_target(const File& file) {
    // Callers ask two questions in a row, what an entry is and where it leads: the last target is
    // kept.
    static uint64_t generation = 0;
    static int64_t seen_at = 0;
    static std::string& last = *new std::string;
    if (file.generation && file.generation == generation && file.seen_at == seen_at) return last;

    char text[PATH_MAX];
    const ssize_t length = readlink(file.path.c_str(), text, sizeof text);
    if (length <= 0) return {};
    last = target_path(file, std::string(text, static_cast<size_t>(length)));
    generation = file.generation;
    seen_at = file.seen_at;
    return last;
}

}  // namespace files
