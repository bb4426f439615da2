// Posted pointer events, with the XTest extension.
#include <CoreGraphics/CGRemoteOperation.h>

#include <stdarg.h>
#include <xcb/xtest.h>

#include <mutex>

#include "events/server_points.h"
#include "x11/server_connection.h"

namespace {

// Opened for the first post. It knows which buttons the posts hold down.
class Poster {
  public:
    bool connect() {
        if (server_ && !xcb_connection_has_error(server_)) return true;
        if (server_) xcb_disconnect(server_);
        held_ = 0;
        server_ = connect_to_server(&root_);
        if (!server_) return false;
        const xcb_query_extension_reply_t* test = xcb_get_extension_data(server_, &xcb_test_id);
        if (!test || !test->present) {
            xcb_disconnect(server_);
            server_ = nullptr;
            return false;
        }
        // Posts also work while another program has grabbed the server.
        xcb_test_grab_control(server_, true);
        return true;
    }

    bool move(CGPoint position) {
        const Reply<xcb_get_geometry_reply_t> size(
            xcb_get_geometry_reply(server_, xcb_get_geometry(server_, root_), nullptr));
        if (!size) return false;
        const ServerPoint to = server_point(position, size->height);
        fake(XCB_MOTION_NOTIFY, 0, to);
        return true;
    }

    // The bits of `buttons` are in the order of the Mac's buttons.
    void hold(unsigned buttons) {
        static const uint8_t x_buttons[] = {1, 3, 2};
        for (unsigned i = 0; i < 3; i++) {
            const unsigned bit = 1u << i;
            if ((buttons ^ held_) & bit) {
                fake(buttons & bit ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, x_buttons[i], {0, 0});
            }
        }
        held_ = buttons;
    }

    // Waits until the server has taken all posts.
    bool finish() {
        const Reply<xcb_get_input_focus_reply_t> done(
            xcb_get_input_focus_reply(server_, xcb_get_input_focus(server_), nullptr));
        return done != nullptr;
    }

  private:
    void fake(uint8_t type, uint8_t detail, ServerPoint at) {
        xcb_test_fake_input(server_, type, detail, XCB_CURRENT_TIME,
                            type == XCB_MOTION_NOTIFY ? root_ : XCB_NONE,
                            static_cast<int16_t>(at.x), static_cast<int16_t>(at.y), 0);
    }

    xcb_connection_t* server_ = nullptr;
    unsigned root_ = 0;
    unsigned held_ = 0;
};

std::mutex posting;

}  // namespace

CGError CGPostMouseEvent(CGPoint position, boolean_t update_position, CGButtonCount button_count,
                         boolean_t left_down, ...) {
    unsigned buttons = left_down ? 1 : 0;
    va_list others;
    va_start(others, left_down);
    for (CGButtonCount i = 1; i < button_count && i < 3; i++) {
        if (va_arg(others, boolean_t)) buttons |= 1u << i;
    }
    va_end(others);

    static Poster poster;
    const std::lock_guard<std::mutex> lock(posting);
    if (!poster.connect()) return kCGErrorCannotComplete;
    if (update_position && !poster.move(position)) return kCGErrorCannotComplete;
    poster.hold(buttons);
    return poster.finish() ? kCGErrorSuccess : kCGErrorCannotComplete;
}

CGError CGSetLocalEventsSuppressionInterval(double seconds) {
    return seconds == 0 ? kCGErrorSuccess : kCGErrorIllegalArgument;
}

CGError CGSetLocalEventsFilterDuringSuppressionState(CGEventFilterMask filter,
                                                     CGEventSuppressionState state) {
    constexpr CGEventFilterMask all = kCGEventFilterMaskPermitLocalMouseEvents |
                                      kCGEventFilterMaskPermitLocalKeyboardEvents |
                                      kCGEventFilterMaskPermitSystemDefinedEvents;
    const bool known = state < kCGNumberOfEventSuppressionStates;
    return known && filter == all ? kCGErrorSuccess : kCGErrorIllegalArgument;
}

CGError CGEnableEventStateCombining(boolean_t) { return kCGErrorSuccess; }
