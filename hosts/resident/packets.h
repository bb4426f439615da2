// Packets with descriptors, and calls in sealed files. Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "file_steps/descriptor.h"
#include "resident/messages.h"

namespace resident {

using operations::Descriptor;

struct Packet {
    std::string bytes;
    std::vector<Descriptor> descriptors;
};

// False when the other side is gone, or does not read.
bool send_packet(int socket, std::string_view bytes, const std::vector<int>& descriptors = {});

template <typename Message>
bool send_message(int socket, const Message& message, const std::vector<int>& descriptors = {}) {
    return send_packet(socket, {reinterpret_cast<const char*>(&message), sizeof message},
                       descriptors);
}

enum class Received { packet, nothing_yet, end };
// Never waits. A packet that is longer than any message, or brings too many descriptors, is an
// `end`.
Received receive_packet(int socket, Packet* packet);

// A file in memory that nobody can change any more. Null when the call is too large or there is no
// memory.
Descriptor file_of(const Call& call);
// Null for a file that could still change, is too large or holds no call.
std::optional<Call> call_in(int file);

}  // namespace resident
