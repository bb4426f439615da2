#include "events/raw_buttons.h"

#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include "x11/server_connection.h"

std::unique_ptr<RawButtons> RawButtons::open() {
    unsigned root = 0;
    xcb_connection_t* server = connect_to_server(&root);
    if (!server) return nullptr;
    std::unique_ptr<RawButtons> buttons(new RawButtons(server, root));
    return buttons->select() ? std::move(buttons) : nullptr;
}

RawButtons::~RawButtons() { xcb_disconnect(server_); }

bool RawButtons::select() {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(server_, &xcb_input_id);
    if (!extension || !extension->present) return false;
    opcode_ = extension->major_opcode;
    // Since version 2.2 raw events also come while another program holds the pointer.
    const Reply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        server_, xcb_input_xi_query_version(server_, 2, 2), nullptr));
    if (!version || version->major_version < 2 ||
        (version->major_version == 2 && version->minor_version < 2)) {
        return false;
    }
    const struct {
        xcb_input_event_mask_t head;
        uint32_t mask;
    } wanted = {
        {XCB_INPUT_DEVICE_ALL_MASTER, 1},
        XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE};
    const Reply<xcb_generic_error_t> refusal(xcb_request_check(
        server_, xcb_input_xi_select_events_checked(server_, root_, 1, &wanted.head)));
    return !refusal && !is_broken();
}

int RawButtons::descriptor() const { return xcb_get_file_descriptor(server_); }

bool RawButtons::is_broken() const { return xcb_connection_has_error(server_) != 0; }

bool RawButtons::next(RawButton* button) {
    while (xcb_generic_event_t* event = xcb_poll_for_event(server_)) {
        const Reply<xcb_generic_event_t> owner(event);
        if ((event->response_type & 0x7F) != XCB_GE_GENERIC) continue;
        const auto* raw = reinterpret_cast<xcb_input_raw_button_press_event_t*>(event);
        if (raw->extension != opcode_) continue;
        button->button = raw->detail;
        button->down = raw->event_type == XCB_INPUT_RAW_BUTTON_PRESS;
        if (locate(button)) return true;
    }
    return false;
}

// Asks for the pointer's place, as raw events carry none.
bool RawButtons::locate(RawButton* button) {
    const auto pointer = xcb_query_pointer(server_, root_);
    const auto geometry = xcb_get_geometry(server_, root_);
    const Reply<xcb_query_pointer_reply_t> at(xcb_query_pointer_reply(server_, pointer, nullptr));
    const Reply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(server_, geometry, nullptr));
    if (!at || !size) return false;
    button->x = at->root_x;
    button->y = at->root_y;
    button->display_height = size->height;
    return true;
}
