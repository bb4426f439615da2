#include "quicklook/helper_reply.h"

#include <errno.h>
#include <poll.h>
#include <string.h>
#include <unistd.h>

namespace thumbnails {

namespace {

using Clock = std::chrono::steady_clock;

// Whether all `size` bytes came before the deadline.
Ending read_whole(int from, void* buffer, size_t size, Clock::time_point deadline) {
    auto* bytes = static_cast<char*>(buffer);
    while (size > 0) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0) return Ending::timed_out;
        pollfd wait = {from, POLLIN, 0};
        if (poll(&wait, 1, static_cast<int>(left.count()) + 1) <= 0) continue;
        const ssize_t count = read(from, bytes, size);
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (count <= 0) return Ending::broke_off;
        bytes += count;
        size -= static_cast<size_t>(count);
    }
    return Ending::answered;
}

bool makes_sense(const Reply& reply, Box box) {
    if (reply.mark != reply_mark || !memchr(reply.type, 0, sizeof reply.type)) return false;
    if (reply.outcome != Outcome::picture) return true;
    return reply.width > 0 && reply.height > 0 && reply.width <= static_cast<uint32_t>(box.width) &&
           reply.height <= static_cast<uint32_t>(box.height);
}

}  // namespace

Answer read_answer(int from, Box box, Clock::time_point deadline) {
    Answer answer;
    answer.ending = read_whole(from, &answer.reply, sizeof answer.reply, deadline);
    if (answer.ending != Ending::answered) return answer;
    if (!makes_sense(answer.reply, box)) {
        answer.ending = Ending::broke_off;
        return answer;
    }
    if (answer.reply.outcome != Outcome::picture) return answer;
    Picture picture{
        static_cast<int>(answer.reply.width), static_cast<int>(answer.reply.height), {}};
    picture.pixels.resize(size_t{answer.reply.width} * answer.reply.height * 4);
    answer.ending = read_whole(from, picture.pixels.data(), picture.pixels.size(), deadline);
    if (answer.ending == Ending::answered) answer.picture = std::move(picture);
    return answer;
}

}  // namespace thumbnails
