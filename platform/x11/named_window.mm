#include "x11/named_window.h"

#include <X11/Xlib.h>
#include <unistd.h>

#include "x11/server_connection.h"
#include "x11/server_monitors.h"
#include "x11/toolkit_display.h"
#include "x11/window_connection.h"
#include "x11/window_manager.h"

namespace {

// A selection of the X server: it has one owner, and the server itself forgets an owner that goes.
std::string selection_of(const std::string& name) {
    return "_DELVIO_WINDOW_" + name + "_" + std::to_string(geteuid());
}

// The window may go at any moment, and an error about it may not end the program.
void send(const WindowConnection& to, xcb_void_cookie_t request) {
    const Reply<xcb_generic_error_t> ignored(xcb_request_check(to.server, request));
}

void ask_manager_for(const WindowConnection& to, xcb_window_t window) {
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = to.active_window;
    message.data.data32[0] = 2;  // asked for by the user
    constexpr uint32_t to_manager =
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    send(to, xcb_send_event_checked(to.server, 0, to.root, to_manager,
                                    reinterpret_cast<const char*>(&message)));
}

void raise_with_keyboard(const WindowConnection& to, xcb_window_t window) {
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    send(to, xcb_configure_window_checked(to.server, window, XCB_CONFIG_WINDOW_STACK_MODE, &above));
    send(to,
         xcb_set_input_focus_checked(to.server, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME));
}

bool is_viewable(const WindowConnection& to, xcb_window_t window) {
    const Reply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        to.server, xcb_get_window_attributes(to.server, window), nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool becomes_active(const WindowConnection& to, xcb_window_t window) {
    constexpr int most_looks = 50, microseconds_between = 20000;
    for (int look = 0; look < most_looks; look++) {
        if (active_window(to) == window) return true;
        usleep(microseconds_between);
    }
    return false;
}

// A Wayland compositor may only mark a window as urgent, but a new window comes to the front.
void show_anew(const WindowConnection& to, xcb_window_t window) {
    if (!is_viewable(to, window) || becomes_active(to, window)) return;
    send(to, xcb_unmap_window_checked(to.server, window));
    send(to, xcb_map_window_checked(to.server, window));
}

xcb_window_t owner_of(const WindowConnection& to, const std::string& selection) {
    const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        to.server,
        xcb_intern_atom(to.server, 0, static_cast<uint16_t>(selection.size()), selection.c_str()),
        nullptr));
    if (!atom) return XCB_WINDOW_NONE;
    const Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        to.server, xcb_get_selection_owner(to.server, atom->atom), nullptr));
    return owner ? owner->owner : XCB_WINDOW_NONE;
}

}  // namespace

bool take_window_name(NSWindow* window, const std::string& name) {
    Display* const display = toolkit_display();
    const Atom selection = XInternAtom(display, selection_of(name).c_str(), False);
    // No other program can come between the question and the answer.
    XGrabServer(display);
    const bool is_free = XGetSelectionOwner(display, selection) == None;
    if (is_free) XSetSelectionOwner(display, selection, server_window(window), CurrentTime);
    XUngrabServer(display);
    XSync(display, False);
    return is_free;
}

bool bring_named_window_forward(const std::string& name) {
    const WindowConnection* to = window_connection();
    const xcb_window_t window = to ? owner_of(*to, selection_of(name)) : XCB_WINDOW_NONE;
    if (window == XCB_WINDOW_NONE) return false;
    if (has_window_manager(*to)) {
        ask_manager_for(*to, window);
        if (server_is_xwayland()) show_anew(*to, window);
    } else {
        raise_with_keyboard(*to, window);
    }
    return true;
}
