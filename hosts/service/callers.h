// The clients that are connected to the resident host. Main thread.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "resident/packets.h"

// One connected client.
struct Caller {
    operations::Descriptor socket;
    resident::Call call;                           // once it has been received
    operations::Descriptor folder, output, error;  // the client's

    // Takes the call out of the client's first packet. False when the packet is no call.
    bool read_call(resident::Packet packet);
    void answer(resident::Verdict verdict, int status = 0) const;
};

// The next client that waits to be accepted; null for none, and for a stranger, who is turned away.
std::unique_ptr<Caller> accept_caller(int listener);
