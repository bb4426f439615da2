#include "x11/front_window.h"

#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <xcb/res.h>
#include <xcb/xcb.h>

#include <memory>

// Through XCB, where a window that has just gone is an answer and no fatal error.
namespace {

struct Free {
    void operator()(void* reply) const { free(reply); }
};
template <typename Reply>
using Owner = std::unique_ptr<Reply, Free>;

class WindowReader {
  public:
    explicit WindowReader(xcb_connection_t* connection)
        : connection_(connection),
          root_(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root) {}

    xcb_window_t active_window() const {
        const xcb_window_t manager = number(root_, "_NET_SUPPORTING_WM_CHECK");
        // The property of a manager that has gone stays.
        const bool managed = manager && number(manager, "_NET_SUPPORTING_WM_CHECK") == manager;
        return managed ? number(root_, "_NET_ACTIVE_WINDOW") : focused_window();
    }

    // What the window says; else what the server knows of who made it. GNUstep's say nothing.
    pid_t process_of(xcb_window_t window) const {
        if (window == XCB_NONE || window == root_) return 0;
        const uint32_t id = number(window, "_NET_WM_PID");
        return static_cast<pid_t>(id ? id : maker_of(window));
    }

  private:
    xcb_window_t focused_window() const {
        const auto cookie = xcb_get_input_focus(connection_);
        const Owner<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(connection_, cookie, nullptr));
        const bool is_window = reply && reply->focus != XCB_INPUT_FOCUS_POINTER_ROOT;
        return is_window ? reply->focus : XCB_NONE;
    }

    bool knows_makers() const {
        if (!xcb_get_extension_data(connection_, &xcb_res_id)->present) return false;
        const auto cookie = xcb_res_query_version(connection_, 1, 2);
        const Owner<xcb_res_query_version_reply_t> reply(
            xcb_res_query_version_reply(connection_, cookie, nullptr));
        return reply && (reply->server_major > 1 || reply->server_minor >= 2);
    }

    // 0 for a program on another machine.
    uint32_t maker_of(xcb_window_t window) const {
        if (!knows_makers()) return 0;
        const xcb_res_client_id_spec_t question = {window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        const auto cookie = xcb_res_query_client_ids(connection_, 1, &question);
        const Owner<xcb_res_query_client_ids_reply_t> reply(
            xcb_res_query_client_ids_reply(connection_, cookie, nullptr));
        if (!reply) return 0;
        const auto answer = xcb_res_query_client_ids_ids_iterator(reply.get());
        const bool known = answer.rem > 0 && xcb_res_client_id_value_value_length(answer.data) > 0;
        return known ? *xcb_res_client_id_value_value(answer.data) : 0;
    }

    xcb_atom_t atom(const char* name) const {
        const auto cookie =
            xcb_intern_atom(connection_, true, static_cast<uint16_t>(strlen(name)), name);
        const Owner<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection_, cookie, nullptr));
        return reply ? reply->atom : XCB_ATOM_NONE;
    }

    // A property that is one 32-bit number; 0 if there is none.
    uint32_t number(xcb_window_t window, const char* name) const {
        const xcb_atom_t property = atom(name);
        if (property == XCB_ATOM_NONE) return 0;
        const auto cookie =
            xcb_get_property(connection_, false, window, property, XCB_ATOM_ANY, 0, 1);
        const Owner<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection_, cookie, nullptr));
        uint32_t value = 0;
        if (reply && reply->format == 32 && reply->value_len == 1) {
            memcpy(&value, xcb_get_property_value(reply.get()), sizeof value);
        }
        return value;
    }

    xcb_connection_t* connection_;
    xcb_window_t root_;
};

// Null when there is none to be had.
xcb_connection_t* connection() {
    static xcb_connection_t* kept;
    if (kept && !xcb_connection_has_error(kept)) return kept;
    if (kept) xcb_disconnect(kept);
    kept = nullptr;
    const char* name = getenv("DISPLAY");
    if (!name || !*name) return nullptr;
    kept = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(kept)) return nullptr;
    fcntl(xcb_get_file_descriptor(kept), F_SETFD, FD_CLOEXEC);
    return kept;
}

}  // namespace

pid_t front_window_process() {
    xcb_connection_t* display = connection();
    if (!display) return 0;
    const WindowReader windows(display);
    return windows.process_of(windows.active_window());
}
