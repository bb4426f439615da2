#include "quicklook/plain_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace thumbnails {

namespace {

bool read_all(int file, std::string& content) {
    size_t done = 0;
    while (done < content.size()) {
        const ssize_t count = read(file, content.data() + done, content.size() - done);
        if (count <= 0) break;
        done += static_cast<size_t>(count);
    }
    return done == content.size();
}

}  // namespace

std::optional<std::string> read_plain_file(const std::string& path, size_t limit) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return {};
    std::optional<std::string> content;
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) &&
        static_cast<size_t>(status.st_size) <= limit) {
        content.emplace(static_cast<size_t>(status.st_size), '\0');
        if (!read_all(file, *content)) content.reset();
    }
    close(file);
    return content;
}

}  // namespace thumbnails
