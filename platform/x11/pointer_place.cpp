#include "x11/pointer_place.h"

#include <X11/Xlib.h>

#include <mutex>

#include "x11/question_connection.h"

namespace {

constexpr unsigned all_buttons =
    Button1Mask | Button2Mask | Button3Mask | Button4Mask | Button5Mask;

std::mutex told_lock;
std::optional<ToldPointer> told;
std::optional<PointerPlace> last_of_server;  // when the telling ended; none while it goes on

// The place that the server says, with the state and the display's height.
PointerPlace ask_server() {
    PointerPlace place;
    Display* display = question_connection();
    if (!display) return place;
    Window root, child;
    int x, y;
    unsigned width, height = 0, border, depth;
    // The size is asked each time, as the screen may have been resized.
    if (!XQueryPointer(display, DefaultRootWindow(display), &root, &child, &place.x, &place.y, &x,
                       &y, &place.state) ||
        !XGetGeometry(display, DefaultRootWindow(display), &root, &x, &y, &width, &height, &border,
                      &depth)) {
        return {};
    }
    place.display_height = static_cast<int>(height);
    return place;
}

}  // namespace

PointerPlace pointer_place() {
    PointerPlace place = ask_server();
    if (place.display_height) correct_pointer(&place.x, &place.y, &place.state);
    return place;
}

unsigned pointer_state() { return pointer_place().state; }

void tell_pointer(const std::optional<ToldPointer>& pointer) {
    const std::lock_guard lock(told_lock);
    told = pointer;
    last_of_server.reset();
}

void end_telling_pointer() {
    const PointerPlace server = ask_server();
    const std::lock_guard lock(told_lock);
    if (told) last_of_server = server;
}

void correct_pointer(int* x, int* y, unsigned* state) {
    const std::lock_guard lock(told_lock);
    if (last_of_server && (last_of_server->x != *x || last_of_server->y != *y)) {
        told.reset();
        last_of_server.reset();
    }
    if (!told) return;
    *x = told->x;
    *y = told->y;
    if (!last_of_server) *state = (*state & ~all_buttons) | told->buttons;
}
