#include "x11/window_manager.h"

#include "x11/window_questions.h"

namespace {

xcb_window_t focused_window(const WindowConnection& to) {
    const Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(to.server, xcb_get_input_focus(to.server), nullptr));
    // The server's values for "none" and "the window under the pointer" are no windows.
    return focus && focus->focus > XCB_INPUT_FOCUS_POINTER_ROOT ? focus->focus : XCB_WINDOW_NONE;
}

}  // namespace

// The root window names a window of the manager. While the manager lives, that window names itself.
bool has_window_manager(const WindowConnection& to) {
    const auto on_root = PropertyQuestion(to.server, to.root, to.supporting_wm_check, 1).numbers();
    if (on_root.empty()) return false;
    return PropertyQuestion(to.server, on_root[0], to.supporting_wm_check, 1).numbers() == on_root;
}

xcb_window_t active_window(const WindowConnection& to) {
    if (!has_window_manager(to)) return focused_window(to);
    const auto active = PropertyQuestion(to.server, to.root, to.active_window, 1).numbers();
    return active.empty() ? XCB_WINDOW_NONE : active[0];
}
