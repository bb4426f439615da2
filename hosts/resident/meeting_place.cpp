#include "resident/meeting_place.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace resident {

namespace {

constexpr int most_waiting = 64;
constexpr int most_turns = 250, microseconds_a_turn = 20000;  // five seconds for the lock
constexpr mode_t only_user = 0700, only_users_file = 0600;

// Null unless the folder is this user's and nobody else can reach into it.
Descriptor open_private_folder() {
    const char* const run_time = getenv("XDG_RUNTIME_DIR");
    if (!run_time || run_time[0] != '/') return Descriptor();
    struct stat owner;  // nothing is made in the folder of another user, as after `su`
    if (stat(run_time, &owner) != 0 || owner.st_uid != geteuid()) return Descriptor();
    const std::string path = std::string(run_time) + "/delvio";
    if (mkdir(path.c_str(), only_user) != 0 && errno != EEXIST) return Descriptor();
    Descriptor folder(open(path.c_str(), O_DIRECTORY | O_NOFOLLOW | O_RDONLY | O_CLOEXEC));
    struct stat status;
    const bool is_private = folder && fstat(folder.get(), &status) == 0 &&
                            status.st_uid == geteuid() && (status.st_mode & 0777) == only_user;
    return is_private ? std::move(folder) : Descriptor();
}

Descriptor new_socket() { return Descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)); }

// Addresses are short; the folder's descriptor stands for its path, however long that is.
bool name_socket(int folder, const std::string& name, sockaddr_un* address) {
    const std::string path = "/proc/self/fd/" + std::to_string(folder) + "/" + name;
    *address = {};
    address->sun_family = AF_UNIX;
    if (path.size() >= sizeof address->sun_path) return false;
    memcpy(address->sun_path, path.c_str(), path.size() + 1);
    return true;
}

}  // namespace

MeetingPlace::MeetingPlace(const std::string& name)
    : folder_(open_private_folder()), name_("menu-" + name) {}

Descriptor MeetingPlace::connect() const {
    // A host that hangs has a full queue, for which a blocking connection would wait.
    Descriptor client(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_un address;
    if (!client || !name_socket(folder_.get(), name_, &address)) return Descriptor();
    const auto* const where = reinterpret_cast<const sockaddr*>(&address);
    if (::connect(client.get(), where, sizeof address) != 0) return Descriptor();
    return is_own_user(client.get()) ? std::move(client) : Descriptor();
}

Descriptor MeetingPlace::listen() const {
    Descriptor server = new_socket();
    sockaddr_un address;
    if (!server || !name_socket(folder_.get(), name_, &address)) return Descriptor();
    remove();
    const auto* const where = reinterpret_cast<const sockaddr*>(&address);
    const bool listens =
        bind(server.get(), where, sizeof address) == 0 && ::listen(server.get(), most_waiting) == 0;
    return listens ? std::move(server) : Descriptor();
}

void MeetingPlace::remove() const { unlinkat(folder_.get(), name_.c_str(), 0); }

std::optional<SocketFile> MeetingPlace::socket_file() const {
    struct stat status;
    if (fstatat(folder_.get(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return {};
    return SocketFile{status.st_dev, status.st_ino};
}

Descriptor MeetingPlace::lock() const {
    Descriptor file(openat(folder_.get(), (name_ + ".lock").c_str(),
                           O_CREAT | O_RDWR | O_NOFOLLOW | O_CLOEXEC, only_users_file));
    if (!file) return file;
    for (int turn = 0; turn < most_turns; ++turn) {
        if (flock(file.get(), LOCK_EX | LOCK_NB) == 0) return file;
        if (errno != EWOULDBLOCK && errno != EINTR) break;
        usleep(microseconds_a_turn);
    }
    return Descriptor();
}

Descriptor MeetingPlace::new_log() const {
    return Descriptor(openat(folder_.get(), (name_ + ".log").c_str(),
                             O_CREAT | O_TRUNC | O_WRONLY | O_APPEND | O_NOFOLLOW | O_CLOEXEC,
                             only_users_file));
}

bool is_own_user(int socket) {
    ucred other;
    socklen_t size = sizeof other;
    return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &other, &size) == 0 &&
           other.uid == geteuid();
}

}  // namespace resident
