// What the command and its resident host say to each other, also as packets from a stranger.
#include <sys/socket.h>
#include <unistd.h>

#include "input.h"
#include "require.h"
#include "resident/packets.h"
#include "resident/shown_call.h"

using fuzz::require;

namespace {

// The packet as it comes out of a socket.
void receive(std::string_view bytes, bool with_descriptor) {
    int ends[2];
    require(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) == 0, "a socket");
    std::vector<int> descriptors;
    if (with_descriptor) descriptors.push_back(ends[0]);
    if (!bytes.empty() && resident::send_packet(ends[0], bytes, descriptors)) {
        resident::Packet packet;
        if (resident::receive_packet(ends[1], &packet) == resident::Received::packet) {
            require(packet.bytes == bytes, "the packet is as it was sent");
            require(packet.descriptors.size() == descriptors.size(), "and so are its descriptors");
        }
    }
    close(ends[0]);
    close(ends[1]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    resident::header_of(bytes);
    resident::signal_of(bytes);
    resident::answer_of(bytes);
    if (const auto call = resident::call_of(bytes)) {
        require(resident::bytes_of(*call) == bytes, "a call has one form");
        resident::asks_for_shown_menu(call->arguments);
        const auto sent = resident::call_in(resident::file_of(*call).get());
        require(sent && sent->arguments == call->arguments, "a call arrives as it was sent");
    }
    if (size < 128) receive(bytes, size % 2);
    return 0;
}
