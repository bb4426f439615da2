#include "quicklook/decoder/read_input.h"

#include <errno.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>

#include "quicklook/decoder/reply_writer.h"

namespace thumbnails {

std::string read_start(size_t limit) {
    const size_t block = 64 * 1024;
    std::string bytes;
    while (bytes.size() < limit) {
        const size_t before = bytes.size();
        bytes.resize(before + std::min(block, limit - before));
        const ssize_t count = pread(file_descriptor, &bytes[before], bytes.size() - before,
                                    static_cast<off_t>(before));
        bytes.resize(before + static_cast<size_t>(std::max<ssize_t>(count, 0)));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
    }
    return bytes;
}

void write_unsupported(const std::string& type) {
    Reply reply = {};
    reply.outcome = Outcome::unsupported;
    strncpy(reply.type, type.c_str(), sizeof reply.type - 1);
    write_reply(reply);
}

}  // namespace thumbnails
