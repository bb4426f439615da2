#include "quicklook/decoder/reply_writer.h"

#include <errno.h>
#include <unistd.h>

namespace thumbnails {

bool write_bytes(const void* bytes, size_t size) {
    const auto* from = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t count = write(reply_descriptor, from, size);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        from += count;
        size -= static_cast<size_t>(count);
    }
    return true;
}

void write_reply(Reply reply) {
    reply.mark = reply_mark;
    write_bytes(&reply, sizeof reply);
}

}  // namespace thumbnails
