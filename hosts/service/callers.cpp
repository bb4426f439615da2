#include "service/callers.h"

#include <fcntl.h>
#include <sys/socket.h>

#include "resident/meeting_place.h"
#include "service/host_log.h"

namespace {

enum { call_place, folder_place, output_place, error_place, number_of_places };

// Writing to a caller must never hold up the others.
bool may_block(const operations::Descriptor& stream) {
    const int flags = fcntl(stream.get(), F_GETFL);
    return flags < 0 || !(flags & O_NONBLOCK);
}

}  // namespace

bool Caller::read_call(resident::Packet packet) {
    if (!resident::header_of(packet.bytes) || packet.descriptors.size() != number_of_places) {
        return false;
    }
    auto read = resident::call_in(packet.descriptors[call_place].get());
    if (!read) return false;
    call = std::move(*read);
    folder = std::move(packet.descriptors[folder_place]);
    output = std::move(packet.descriptors[output_place]);
    error = std::move(packet.descriptors[error_place]);
    return !may_block(output) && !may_block(error);
}

// A client that has gone needs no answer.
void Caller::answer(resident::Verdict verdict, int status) const {
    resident::send_message(socket.get(), resident::Answer{verdict, static_cast<uint32_t>(status)});
}

std::unique_ptr<Caller> accept_caller(int listener) {
    operations::Descriptor socket(
        accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!socket) return nullptr;
    if (!resident::is_own_user(socket.get())) {
        log_line("a connection of another user was refused");
        return nullptr;
    }
    auto caller = std::make_unique<Caller>();
    caller->socket = std::move(socket);
    return caller;
}
