// The place where client and host meet: a socket in a private folder, $XDG_RUNTIME_DIR/delvio. Any
// thread.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "file_steps/descriptor.h"

namespace resident {

using operations::Descriptor;

// Tells a socket's file from every other one that exists at the same time.
struct SocketFile {
    dev_t device = 0;
    ino_t node = 0;
    bool operator==(const SocketFile&) const = default;
};

class MeetingPlace {
  public:
    // The place of the host with this name. False (as bool) when there is no run-time folder, or
    // the folder is not this user's alone.
    explicit MeetingPlace(const std::string& name);
    explicit operator bool() const { return static_cast<bool>(folder_); }

    // Connects to the host that listens there; null when none does.
    Descriptor connect() const;
    // Starts to listen there, whatever listened before; the caller has the lock.
    Descriptor listen() const;
    // Removes the socket, so that nobody connects any more.
    void remove() const;
    // The socket that is there now; null for none.
    std::optional<SocketFile> socket_file() const;
    // Waits some seconds for the lock that whoever starts a host holds; null on failure.
    Descriptor lock() const;
    // The file for the host's log, with nothing in it.
    Descriptor new_log() const;

  private:
    Descriptor folder_;
    std::string name_;
};

// Whether the other side runs as this user.
bool is_own_user(int socket);

}  // namespace resident
