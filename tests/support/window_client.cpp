// A small X client with the windows that a test asks for. Arguments are read in order and act on
// the latest window: "window" makes one, "class=INSTANCE,CLASS", "type=NAME" (of
// _NET_WM_WINDOW_TYPE_), "state=NAME" (of _NET_WM_STATE_), "machine=NAME", "pid=NUMBER",
// "transient", "show", "focus". It runs until it is killed or standard input ends.
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

xcb_connection_t* server;
xcb_screen_t* screen;
xcb_window_t first, window;

xcb_atom_t atom(const std::string& name) {
    const auto cookie =
        xcb_intern_atom(server, 0, static_cast<uint16_t>(name.size()), name.c_str());
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(server, cookie, nullptr);
    const xcb_atom_t result = reply ? reply->atom : XCB_ATOM_NONE;
    free(reply);
    return result;
}

void set_text(xcb_atom_t property, const std::string& text) {
    xcb_change_property(server, XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_STRING, 8,
                        static_cast<uint32_t>(text.size()), text.data());
}

void set_number(const char* property, xcb_atom_t type, uint32_t number) {
    xcb_change_property(server, XCB_PROP_MODE_REPLACE, window, atom(property), type, 32, 1,
                        &number);
}

void make_window() {
    window = xcb_generate_id(server);
    xcb_create_window(server, XCB_COPY_FROM_PARENT, window, screen->root, 10, 10, 60, 40, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    if (!first) first = window;
}

// The X server gives the focus only to visible windows.
void focus() {
    for (int i = 0; i < 200; i++) {
        xcb_get_window_attributes_reply_t* reply = xcb_get_window_attributes_reply(
            server, xcb_get_window_attributes(server, window), nullptr);
        const bool seen = reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
        free(reply);
        if (seen) break;
        usleep(10000);
    }
    xcb_set_input_focus(server, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
}

void act(const std::string& word) {
    const size_t equals = word.find('=');
    const std::string verb = word.substr(0, equals);
    std::string value = equals == word.npos ? "" : word.substr(equals + 1);
    if (verb == "window") make_window();
    if (verb == "show") xcb_map_window(server, window);
    if (verb == "focus") focus();
    if (verb == "machine") set_text(XCB_ATOM_WM_CLIENT_MACHINE, value);
    if (verb == "pid") set_number("_NET_WM_PID", XCB_ATOM_CARDINAL, std::stoul(value));
    if (verb == "type") {
        set_number("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, atom("_NET_WM_WINDOW_TYPE_" + value));
    }
    if (verb == "state") {
        set_number("_NET_WM_STATE", XCB_ATOM_ATOM, atom("_NET_WM_STATE_" + value));
    }
    if (verb == "transient") set_number("WM_TRANSIENT_FOR", XCB_ATOM_WINDOW, first);
    if (verb == "class") {
        value[value.find(',')] = '\0';
        set_text(XCB_ATOM_WM_CLASS, value + '\0');
    }
}

}  // namespace

int main(int count, char** words) {
    server = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(server)) return 1;
    screen = xcb_setup_roots_iterator(xcb_get_setup(server)).data;
    for (int i = 1; i < count; i++) act(words[i]);
    xcb_flush(server);
    char byte;
    while (read(0, &byte, 1) > 0) {
    }
    xcb_disconnect(server);
    return 0;
}
