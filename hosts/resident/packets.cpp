#include "resident/packets.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>

namespace resident {

namespace {

constexpr size_t longest_packet = 64, most_descriptors = 8;
constexpr int seals = F_SEAL_SEAL | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE;

struct alignas(cmsghdr) ControlBuffer {
    char bytes[CMSG_SPACE(most_descriptors * sizeof(int))] = {};
};

std::vector<Descriptor> descriptors_in(msghdr* message) {
    std::vector<Descriptor> found;
    for (cmsghdr* part = CMSG_FIRSTHDR(message); part; part = CMSG_NXTHDR(message, part)) {
        if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) continue;
        const size_t count = (part->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        for (size_t i = 0; i < count; ++i) {
            int number;
            memcpy(&number, CMSG_DATA(part) + i * sizeof number, sizeof number);
            found.emplace_back(number);
        }
    }
    return found;
}

bool read_all(int file, std::string* bytes) {
    size_t done = 0;
    while (done < bytes->size()) {
        const ssize_t count =
            pread(file, bytes->data() + done, bytes->size() - done, static_cast<off_t>(done));
        if (count <= 0) return false;
        done += static_cast<size_t>(count);
    }
    return true;
}

}  // namespace

bool send_packet(int socket, std::string_view bytes, const std::vector<int>& descriptors) {
    if (descriptors.size() > most_descriptors) return false;
    iovec part = {const_cast<char*>(bytes.data()), bytes.size()};
    ControlBuffer control;
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    if (!descriptors.empty()) {
        message.msg_control = control.bytes;
        message.msg_controllen = CMSG_SPACE(descriptors.size() * sizeof(int));
        cmsghdr* const header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(descriptors.size() * sizeof(int));
        memcpy(CMSG_DATA(header), descriptors.data(), descriptors.size() * sizeof(int));
    }
    return sendmsg(socket, &message, MSG_NOSIGNAL | MSG_DONTWAIT) ==
           static_cast<ssize_t>(bytes.size());
}

Received receive_packet(int socket, Packet* packet) {
    char bytes[longest_packet];
    iovec part = {bytes, sizeof bytes};
    ControlBuffer control;
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control.bytes;
    message.msg_controllen = sizeof control.bytes;
    const ssize_t size = recvmsg(socket, &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    if (size < 0) return errno == EAGAIN || errno == EINTR ? Received::nothing_yet : Received::end;
    packet->descriptors = descriptors_in(&message);  // they are closed, whatever the packet is
    if (size == 0 || message.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) return Received::end;
    packet->bytes.assign(bytes, static_cast<size_t>(size));
    return Received::packet;
}

Descriptor file_of(const Call& call) {
    const std::string bytes = bytes_of(call);
    Descriptor file(memfd_create("delvio-call", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    const bool is_made = !bytes.empty() && file &&
                         operations::write_fully(file.get(), bytes.data(), bytes.size()) &&
                         fcntl(file.get(), F_ADD_SEALS, seals) == 0;
    return is_made ? std::move(file) : Descriptor();
}

std::optional<Call> call_in(int file) {
    struct stat status;
    const int held = fcntl(file, F_GET_SEALS);
    if (held < 0 || (held & seals) != seals || fstat(file, &status) != 0) return {};
    if (status.st_size <= 0 || static_cast<size_t>(status.st_size) > largest_call) return {};
    std::string bytes(static_cast<size_t>(status.st_size), '\0');
    if (!read_all(file, &bytes)) return {};
    return call_of(bytes);
}

}  // namespace resident
