#include "file_steps/descriptor.h"

#include <errno.h>
#include <sys/file.h>

namespace operations {

void unlock(const Descriptor& file) {
    if (file) flock(file.get(), LOCK_UN);
}

bool write_fully(int file, const void* bytes, size_t size) {
    const char* next = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t written = write(file, next, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        next += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

}  // namespace operations
