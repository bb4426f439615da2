#include "x11/server_connection.h"

#include <fcntl.h>

xcb_connection_t* connect_to_server(unsigned* root) {
    const char* name = getenv("DISPLAY");
    if (!name || !*name) return nullptr;
    int number = 0;
    xcb_connection_t* server = xcb_connect(nullptr, &number);
    xcb_screen_iterator_t screen = {};
    if (!xcb_connection_has_error(server)) {
        screen = xcb_setup_roots_iterator(xcb_get_setup(server));
        while (number-- > 0 && screen.rem > 1) xcb_screen_next(&screen);
    }
    if (!screen.data) {
        xcb_disconnect(server);
        return nullptr;
    }
    fcntl(xcb_get_file_descriptor(server), F_SETFD, FD_CLOEXEC);
    *root = screen.data->root;
    return server;
}
