#include "resident/messages.h"

#include <string.h>

namespace resident {

namespace {

// Three numbers, and then each string with a zero at its end.
struct CallSizes {
    uint32_t arguments = 0, variables = 0, file_mode_mask = 0;
};

constexpr uint32_t file_mode_bits = 0777, highest_status = 255, highest_signal = 64;

template <typename Message>
std::optional<Message> read(std::string_view packet) {
    if (packet.size() != sizeof(Message)) return {};
    Message message;
    memcpy(&message, packet.data(), sizeof message);
    return message;
}

void append(const std::vector<std::string>& strings, std::string* bytes) {
    for (const std::string& text : strings) bytes->append(text.c_str(), strlen(text.c_str()) + 1);
}

// Takes `count` strings off the front of `bytes`. A false count ends when the bytes end, so it
// reserves nothing.
bool take(uint32_t count, std::string_view* bytes, std::vector<std::string>* strings) {
    for (uint32_t i = 0; i < count; ++i) {
        const size_t end = bytes->find('\0');
        if (end == std::string_view::npos) return false;
        strings->emplace_back(bytes->substr(0, end));
        bytes->remove_prefix(end + 1);
    }
    return true;
}

bool are_variables(const std::vector<std::string>& strings) {
    for (const std::string& text : strings) {
        const size_t equals = text.find('=');
        if (equals == 0 || equals == std::string::npos) return false;
    }
    return true;
}

}  // namespace

std::string bytes_of(const Call& call) {
    const CallSizes sizes = {static_cast<uint32_t>(call.arguments.size()),
                             static_cast<uint32_t>(call.environment.size()), call.file_mode_mask};
    std::string bytes(reinterpret_cast<const char*>(&sizes), sizeof sizes);
    append(call.arguments, &bytes);
    append(call.environment, &bytes);
    return bytes.size() > largest_call ? std::string() : bytes;
}

std::optional<Call> call_of(std::string_view bytes) {
    if (bytes.size() < sizeof(CallSizes) || bytes.size() > largest_call) return {};
    const auto sizes = read<CallSizes>(bytes.substr(0, sizeof(CallSizes)));
    bytes.remove_prefix(sizeof(CallSizes));
    Call call;
    call.file_mode_mask = sizes->file_mode_mask;
    const bool is_whole = take(sizes->arguments, &bytes, &call.arguments) &&
                          take(sizes->variables, &bytes, &call.environment) && bytes.empty();
    if (!is_whole || call.file_mode_mask > file_mode_bits) return {};
    if (!are_variables(call.environment)) return {};
    return call;
}

std::optional<CallHeader> header_of(std::string_view packet) {
    const auto header = read<CallHeader>(packet);
    return header && header->number == protocol ? header : std::nullopt;
}

std::optional<Signal> signal_of(std::string_view packet) {
    const auto signal = read<Signal>(packet);
    return signal && signal->number > 0 && signal->number <= highest_signal ? signal : std::nullopt;
}

std::optional<Answer> answer_of(std::string_view packet) {
    const auto answer = read<Answer>(packet);
    if (!answer || answer->status > highest_status) return {};
    const bool is_known = answer->verdict >= Verdict::taken && answer->verdict <= Verdict::outdated;
    return is_known ? answer : std::nullopt;
}

}  // namespace resident
