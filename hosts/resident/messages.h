// What the client and the resident host say to each other, as bytes. No toolkit; any thread.
//
// Each message is one packet of a SOCK_SEQPACKET socket, so none arrives in part. The client's
// first packet is a CallHeader with four descriptors: a sealed file that holds the call, the
// client's folder, and pipes for its standard output and its standard error, which never make a
// writer wait. Later packets of the client are Signals; the host sends Answers.
#pragma once

#include <stdint.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace resident {

struct Call {
    std::vector<std::string> arguments;    // those after the program's name
    std::vector<std::string> environment;  // NAME=VALUE
    uint32_t file_mode_mask = 0;
};

// A larger call is refused. The system allows a program 6 MiB of arguments and environment.
inline constexpr size_t largest_call = 8u << 20;

// The bytes of a call; empty if the call is too large.
std::string bytes_of(const Call& call);
// Null for bytes that are no call.
std::optional<Call> call_of(std::string_view bytes);

inline constexpr uint32_t protocol = 0x44564c31;  // the letters DVL and a version

struct CallHeader {
    uint32_t number = protocol;
};

struct Signal {
    uint32_t number = 0;
};

enum class Verdict : uint32_t {
    taken = 1,  // the host works on the call; `done` follows
    done,       // the call has ended with `status`
    elsewhere,  // the host cannot serve this call: run the full program
    outdated,   // the host ends: start another one
};

struct Answer {
    Verdict verdict = Verdict::elsewhere;
    uint32_t status = 0;
};

// Null for bytes that are no such message.
std::optional<CallHeader> header_of(std::string_view packet);
std::optional<Signal> signal_of(std::string_view packet);
std::optional<Answer> answer_of(std::string_view packet);

}  // namespace resident
