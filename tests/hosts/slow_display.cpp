#include "hosts/slow_display.h"

#include <arpa/inet.h>
#include <poll.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace test {
namespace {

constexpr int first_port = 6000, first_display = 400, last_display = 500;
constexpr int milliseconds_a_turn = 20;

int connect_to(const std::string& path) {
    const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    struct sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    if (connect(server, reinterpret_cast<struct sockaddr*>(&address), sizeof address) != 0) abort();
    return server;
}

// Passes on the available bytes; false at the end.
bool pass_on(int from, int to) {
    char block[65536];
    const ssize_t count = read(from, block, sizeof block);
    for (ssize_t done = 0; done < count;) {
        const ssize_t written =
            send(to, block + done, static_cast<size_t>(count - done), MSG_NOSIGNAL);
        if (written <= 0) return false;
        done += written;
    }
    return count > 0;
}

}  // namespace

SlowDisplay::SlowDisplay(int first_held) : first_held_(first_held) {
    const std::string display = getenv("DISPLAY");
    display_ = "/tmp/.X11-unix/X" + display.substr(display.find(':') + 1);
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    for (int number = first_display; number < last_display; ++number) {
        struct sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<uint16_t>(first_port + number));
        const auto* generic = reinterpret_cast<struct sockaddr*>(&address);
        if (bind(listener_, generic, sizeof address) != 0) continue;
        name_ = "127.0.0.1:" + std::to_string(number);
        break;
    }
    if (name_.empty() || listen(listener_, 8) != 0) abort();
    thread_ = std::thread([this] { serve(); });
}

SlowDisplay::~SlowDisplay() {
    ends_ = true;
    thread_.join();
    for (const auto& [client, server] : relayed_) close(client), close(server);
    for (const int client : waiting_) close(client);
    close(listener_);
}

void SlowDisplay::serve() {
    while (!ends_) {
        std::vector<struct pollfd> ready = {{listener_, POLLIN, 0}};
        for (const auto& [client, server] : relayed_) {
            ready.push_back({client, POLLIN, 0});
            ready.push_back({server, POLLIN, 0});
        }
        if (poll(ready.data(), ready.size(), milliseconds_a_turn) <= 0) continue;
        for (size_t i = relayed_.size(); i-- > 0;) {
            relay(i, ready[1 + 2 * i].revents != 0, ready[2 + 2 * i].revents != 0);
        }
        if (ready[0].revents) take_connection();
    }
}

void SlowDisplay::relay(size_t index, bool from_client, bool from_server) {
    const auto [client, server] = relayed_[index];
    const bool open =
        (!from_client || pass_on(client, server)) && (!from_server || pass_on(server, client));
    if (open) return;
    close(client);
    close(server);
    relayed_.erase(relayed_.begin() + static_cast<long>(index));
}

void SlowDisplay::take_connection() {
    const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (++accepted_ < first_held_) {
        relayed_.emplace_back(client, connect_to(display_));
        return;
    }
    waiting_.push_back(client);
    held_ = true;
}

}  // namespace test
