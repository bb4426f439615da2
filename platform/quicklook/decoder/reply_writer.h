// Writing a Reply. One thread.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "quicklook/reply.h"

namespace thumbnails {

void write_reply(Reply reply);
inline void write_reply(Outcome outcome) {
    Reply reply = {};
    reply.outcome = outcome;
    write_reply(reply);
}

// False when nobody reads any longer.
bool write_bytes(const void* bytes, size_t size);

}  // namespace thumbnails
