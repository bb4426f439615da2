// Reads small files of the desktop's bookkeeping, and never anything that could block.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

namespace files {

// Reads the whole content of a plain file of at most `limit` bytes. False for anything else. The
// file is looked at before it is opened, because opening a device can have effects.
inline bool read_small_file(const char* path, size_t limit, std::string* content) {
    content->clear();
    struct stat status;
    if (stat(path, &status) != 0 || !S_ISREG(status.st_mode)) return false;
    const int file = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return false;

    bool whole = false;
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) &&
        static_cast<size_t>(status.st_size) <= limit) {
        content->resize(static_cast<size_t>(status.st_size));
        const ssize_t count = read(file, content->data(), content->size());
        whole = count >= 0;
        content->resize(whole ? static_cast<size_t>(count) : 0);
    }
    close(file);
    return whole;
}

}  // namespace files
