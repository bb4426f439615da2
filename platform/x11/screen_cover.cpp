#include "x11/screen_cover.h"

#include <string.h>

#include "x11/server_connection.h"

namespace {

constexpr int depth_with_alpha = 32;

const xcb_screen_t* screen_of(xcb_connection_t* server, xcb_window_t root) {
    xcb_screen_iterator_t screen = xcb_setup_roots_iterator(xcb_get_setup(server));
    while (screen.rem > 1 && screen.data->root != root) xcb_screen_next(&screen);
    return screen.data;
}

// A visual with an alpha channel: pixels of 0 show what is below the window.
xcb_visualid_t transparent_visual(const xcb_screen_t* screen) {
    xcb_depth_iterator_t depth = xcb_screen_allowed_depths_iterator(screen);
    for (; depth.rem; xcb_depth_next(&depth)) {
        if (depth.data->depth != depth_with_alpha) continue;
        xcb_visualtype_iterator_t visual = xcb_depth_visuals_iterator(depth.data);
        for (; visual.rem; xcb_visualtype_next(&visual)) {
            if (visual.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR) return visual.data->visual_id;
        }
    }
    return XCB_NONE;
}

}  // namespace

// The server destroys the window.
ScreenCover::~ScreenCover() {
    if (server_) xcb_disconnect(server_);
}

bool ScreenCover::open() {
    xcb_window_t root = XCB_NONE;
    server_ = connect_to_server(&root);
    if (!server_) return false;
    screen_ = screen_of(server_, root);
    visual_ = transparent_visual(screen_);
    if (visual_ == XCB_NONE) return false;
    colors_ = xcb_generate_id(server_);
    xcb_create_colormap(server_, XCB_COLORMAP_ALLOC_NONE, colors_, root, visual_);
    ask_for_keyboard();
    cover_screen();
    xcb_flush(server_);
    return true;
}

xcb_window_t ScreenCover::add_window(bool managed, uint16_t width, uint16_t height) {
    const xcb_window_t window = xcb_generate_id(server_);
    const uint32_t values[] = {0, 0, !managed, XCB_EVENT_MASK_POINTER_MOTION, colors_};
    xcb_create_window(server_, depth_with_alpha, window, screen_->root, 0, 0, width, height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual_,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                          XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values);
    return window;
}

void ScreenCover::cover_screen() {
    xcb_map_window(server_, add_window(false, screen_->width_in_pixels, screen_->height_in_pixels));
}

// A dialog without a frame, outside the lists of windows. Compositors give a new dialog the
// keyboard, and give it back to the window that had it when the dialog closes.
void ScreenCover::ask_for_keyboard() {
    dialog_ = add_window(true, 1, 1);
    constexpr uint32_t decorations_are_told = 2, no_decorations = 0;
    constexpr uint32_t input_is_told = 1, takes_input = 1;
    set(dialog_, "_MOTIF_WM_HINTS", atom("_MOTIF_WM_HINTS"),
        {decorations_are_told, 0, no_decorations, 0, 0});
    set(dialog_, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, {atom("_NET_WM_WINDOW_TYPE_DIALOG")});
    set(dialog_, "_NET_WM_STATE", XCB_ATOM_ATOM,
        {atom("_NET_WM_STATE_SKIP_TASKBAR"), atom("_NET_WM_STATE_SKIP_PAGER")});
    set(dialog_, "WM_HINTS", XCB_ATOM_WM_HINTS, {input_is_told, takes_input, 0, 0, 0, 0, 0, 0, 0});
    xcb_map_window(server_, dialog_);
}

void ScreenCover::take_keyboard() {
    xcb_set_input_focus(server_, XCB_INPUT_FOCUS_POINTER_ROOT, dialog_, XCB_CURRENT_TIME);
    xcb_flush(server_);
}

xcb_atom_t ScreenCover::atom(const char* name) const {
    const auto length = static_cast<uint16_t>(strlen(name));
    const Reply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(server_, xcb_intern_atom(server_, 0, length, name), nullptr));
    return reply ? reply->atom : XCB_ATOM_NONE;
}

void ScreenCover::set(xcb_window_t window, const char* property, xcb_atom_t type,
                      const std::vector<uint32_t>& values) const {
    xcb_change_property(server_, XCB_PROP_MODE_REPLACE, window, atom(property), type, 32,
                        static_cast<uint32_t>(values.size()), values.data());
}

// The server first tells an entering at the place that the pointer had when an X window last saw
// it, so that only a motion says something new.
bool ScreenCover::read() {
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(server_)}) {
        if ((event->response_type & 0x7f) != XCB_MOTION_NOTIFY) continue;
        const auto* motion = reinterpret_cast<const xcb_motion_notify_event_t*>(event.get());
        moved_ = true;
        x_ = motion->root_x;
        y_ = motion->root_y;
    }
    return !xcb_connection_has_error(server_);
}

bool ScreenCover::knows_pointer(int* x, int* y) const {
    *x = x_;
    *y = y_;
    return moved_;
}
