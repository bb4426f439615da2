// Shows a cursor over other programs' windows. The server shows the cursor of the deepest window
// under the pointer, even while a button holds the pointer, so the cursor is set on that window and
// taken away soon after.
#include <Carbon/Appearance.h>

#include <xcb/xcb_cursor.h>

#include <chrono>
#include <condition_variable>
#include <iterator>
#include <mutex>
#include <system_error>
#include <thread>

#include "x11/server_connection.h"

namespace {

using Moment = std::chrono::steady_clock::time_point;
constexpr std::chrono::milliseconds lasting{500}, looking{40};

// The name in cursor themes, and the name of a cursor that every server has.
constexpr struct {
    const char *themed, *plain;
} names[] = {{"left_ptr", "left_ptr"},
             {"copy", "plus"},
             {"alias", "exchange"},
             {"context-menu", "based_arrow_down"}};

struct Place {
    xcb_window_t window;
    int x, y;
    bool operator==(const Place&) const = default;
};

class ShownCursor {
  public:
    bool show(ThemeCursor cursor) {
        const std::lock_guard<std::mutex> lock(mutex_);
        Place place;
        if (!is_kept() || !connect() || !find_place(&place)) return false;
        if (!loaded_[cursor]) loaded_[cursor] = load(cursor);
        if (shown_ && (place != place_ || cursor != cursor_)) undo();
        if (!shown_) define(place.window, loaded_[cursor]);
        shown_ = true;
        place_ = place;
        cursor_ = cursor;
        shown_at_ = std::chrono::steady_clock::now();
        wake_.notify_one();
        return true;
    }

  private:
    // False where no thread is to be had that takes the cursor away again.
    bool is_kept() {
        try {
            if (!has_keeper_) std::thread(&ShownCursor::keep, this).detach();
            has_keeper_ = true;
        } catch (const std::system_error&) {
        }
        return has_keeper_;
    }

    bool connect() {
        if (server_ && !xcb_connection_has_error(server_)) return true;
        if (server_) xcb_disconnect(server_);
        shown_ = false;
        std::fill(std::begin(loaded_), std::end(loaded_), xcb_cursor_t{XCB_NONE});
        server_ = connect_to_server(&root_);
        return server_ != nullptr;
    }

    // The deepest window under the pointer.
    bool find_place(Place* place) {
        xcb_window_t window = root_;
        for (;;) {
            const Reply<xcb_query_pointer_reply_t> at(
                xcb_query_pointer_reply(server_, xcb_query_pointer(server_, window), nullptr));
            // A window may close during the search.
            if (!at && window == root_) return false;
            if (at) *place = {window, at->root_x, at->root_y};
            if (!at || at->child == XCB_NONE) return true;
            window = at->child;
        }
    }

    xcb_cursor_t load(ThemeCursor cursor) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(server_)).data;
        xcb_cursor_context_t* context = nullptr;
        if (xcb_cursor_context_new(server_, const_cast<xcb_screen_t*>(screen), &context) < 0) {
            return XCB_NONE;
        }
        xcb_cursor_t loaded = xcb_cursor_load_cursor(context, names[cursor].themed);
        if (!loaded) loaded = xcb_cursor_load_cursor(context, names[cursor].plain);
        xcb_cursor_context_free(context);
        return loaded;
    }

    // A window that has gone is no error.
    void define(xcb_window_t window, xcb_cursor_t cursor) {
        const Reply<xcb_generic_error_t> ignored(xcb_request_check(
            server_,
            xcb_change_window_attributes_checked(server_, window, XCB_CW_CURSOR, &cursor)));
    }

    void undo() {
        define(place_.window, XCB_NONE);
        shown_ = false;
    }

    bool is_over() {
        Place place;
        if (xcb_connection_has_error(server_) || !find_place(&place)) return true;
        return place != place_ || std::chrono::steady_clock::now() - shown_at_ > lasting;
    }

    // Takes the cursor away when it is over. Sleeps while no cursor is shown.
    void keep() {
        std::unique_lock<std::mutex> lock(mutex_);
        for (;;) {
            wake_.wait(lock, [this] { return shown_; });
            wake_.wait_for(lock, looking, [] { return false; });
            if (shown_ && is_over()) undo();
        }
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    xcb_connection_t* server_ = nullptr;
    xcb_window_t root_ = XCB_NONE;
    xcb_cursor_t loaded_[std::size(names)] = {};
    bool shown_ = false;
    Place place_ = {};
    ThemeCursor cursor_ = 0;
    Moment shown_at_;
    bool has_keeper_ = false;
};

}  // namespace

OSStatus SetThemeCursor(ThemeCursor cursor) {
    if (cursor >= std::size(names)) return paramErr;
    // Never destroyed: its thread lives as long as the process.
    static auto* shown = new ShownCursor;
    return shown->show(cursor) ? static_cast<OSStatus>(noErr) : static_cast<OSStatus>(ioErr);
}
