// Connections to the X server beside the toolkit's own.
#pragma once

#include <stdlib.h>
#include <xcb/xcb.h>

#include <memory>

struct free_reply_t {
    void operator()(void* reply) const { free(reply); }
};
template <typename reply>
using reply_t = std::unique_ptr<reply, free_reply_t>;

// Opens a connection, which the caller disconnects, and gives the root window of its screen. Null
// without a display.
xcb_connection_t* connect_to_server(unsigned* root);
