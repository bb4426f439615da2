// Connections to the X server beside the toolkit's own.
#pragma once

#include <stdlib.h>
#include <xcb/xcb.h>

#include <memory>

struct FreeReply {
    void operator()(void* reply) const { free(reply); }
};
template <typename reply>
using Reply = std::unique_ptr<reply, FreeReply>;

// Opens a connection, which the caller disconnects, and gives the root window of its screen. Null
// without a display.
xcb_connection_t* connect_to_server(unsigned* root);
