#include "x11/window_connection.h"

#include <X11/Xlib-xcb.h>
#include <X11/Xlib.h>
#include <string.h>
#include <xcb/res.h>

#include <iterator>

#include "x11/question_connection.h"
#include "x11/server_connection.h"

namespace {

const struct {
    const char* name;
    xcb_atom_t WindowConnection::*atom;
} atoms[] = {
    {"WM_STATE", &WindowConnection::wm_state},
    {"WM_CLIENT_MACHINE", &WindowConnection::client_machine},
    {"_NET_SUPPORTING_WM_CHECK", &WindowConnection::supporting_wm_check},
    {"_NET_CLIENT_LIST", &WindowConnection::client_list},
    {"_NET_ACTIVE_WINDOW", &WindowConnection::active_window},
    {"_NET_WM_PID", &WindowConnection::pid},
    {"_NET_WM_WINDOW_TYPE", &WindowConnection::window_type},
    {"_NET_WM_WINDOW_TYPE_NORMAL", &WindowConnection::type_normal},
    {"_NET_WM_STATE", &WindowConnection::state},
    {"_NET_WM_STATE_SKIP_TASKBAR", &WindowConnection::skip_taskbar},
};

void read_atoms(WindowConnection* connection) {
    xcb_intern_atom_cookie_t cookies[std::size(atoms)];
    for (size_t i = 0; i < std::size(atoms); i++) {
        const auto length = static_cast<uint16_t>(strlen(atoms[i].name));
        cookies[i] = xcb_intern_atom(connection->server, 0, length, atoms[i].name);
    }
    for (size_t i = 0; i < std::size(atoms); i++) {
        const Reply<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection->server, cookies[i], nullptr));
        connection->*atoms[i].atom = reply ? reply->atom : XCB_ATOM_NONE;
    }
}

// The extension tells client identities since its version 1.2.
bool server_tells_processes(xcb_connection_t* server) {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(server, &xcb_res_id);
    if (!extension || !extension->present) return false;
    const Reply<xcb_res_query_version_reply_t> version(
        xcb_res_query_version_reply(server, xcb_res_query_version(server, 1, 2), nullptr));
    return version && (version->server_major > 1 || version->server_minor >= 2);
}

void open_connection(WindowConnection* connection, Display* display) {
    *connection = {};
    connection->display = display;
    connection->server = XGetXCBConnection(display);
    connection->root = static_cast<xcb_window_t>(DefaultRootWindow(display));
    read_atoms(connection);
    connection->tells_processes = server_tells_processes(connection->server);
}

}  // namespace

const WindowConnection* window_connection() {
    static WindowConnection connection;
    Display* display = question_connection();
    if (display && display != connection.display) open_connection(&connection, display);
    return display ? &connection : nullptr;
}
