#include "file_managers/screen.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace test {

namespace {

constexpr useconds_t pause = 50000;
constexpr int least_menu_side = 16;  // smaller windows are helpers of toolkits

// A window may close before its attributes are asked for.
int ignore_error(Display*, XErrorEvent*) { return 0; }

bool is_tooltip(Display* display, Window window) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0, left = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, window, XInternAtom(display, "_NET_WM_WINDOW_TYPE", False), 0, 1,
                       False, XA_ATOM, &type, &format, &count, &left, &data);
    const Atom tooltip = XInternAtom(display, "_NET_WM_WINDOW_TYPE_TOOLTIP", False);
    const bool is = data && count == 1 && *reinterpret_cast<Atom*>(data) == tooltip;
    if (data) XFree(data);
    return is;
}

}  // namespace

Rectangle difference(const Pixels& one, const Pixels& other, const Rectangle& bounds) {
    int left = one.width, top = one.height, right = -1, bottom = -1;
    for (int y = bounds.top; y < bounds.top + bounds.height; y++) {
        for (int x = bounds.left; x < bounds.left + bounds.width; x++) {
            const size_t at =
                static_cast<size_t>(y) * static_cast<size_t>(one.width) + static_cast<size_t>(x);
            if (one.colors[at] == other.colors[at]) continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    if (right < 0) return {};
    return {left, top, right - left + 1, bottom - top + 1};
}

bool becomes_true(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        usleep(pause);
    }
    return true;
}

Screen::Screen() : display_(XOpenDisplay(nullptr)) {
    if (!display_) throw std::runtime_error("no display");
    XSetErrorHandler(ignore_error);
}

Screen::~Screen() { XCloseDisplay(display_); }

Pixels Screen::now() const {
    const Window root = DefaultRootWindow(display_);
    const int screen = DefaultScreen(display_);
    Pixels pixels{DisplayWidth(display_, screen), DisplayHeight(display_, screen), {}};
    XImage* image = XGetImage(display_, root, 0, 0, static_cast<unsigned>(pixels.width),
                              static_cast<unsigned>(pixels.height), AllPlanes, ZPixmap);
    if (!image) return pixels;
    const auto* first = reinterpret_cast<const unsigned*>(image->data);
    pixels.colors.assign(first, first + pixels.width * pixels.height);
    XDestroyImage(image);
    return pixels;
}

Pixels Screen::settled() const {
    Pixels last = now();
    int same = 0;
    becomes_true([&] {
        Pixels next = now();
        same = next == last ? same + 1 : 0;
        last = std::move(next);
        return same >= 5;
    });
    return last;
}

std::set<unsigned long> Screen::menus() const {
    Window root, parent, *children = nullptr;
    unsigned count = 0;
    XQueryTree(display_, DefaultRootWindow(display_), &root, &parent, &children, &count);
    std::set<unsigned long> found;
    for (unsigned i = 0; i < count; i++) {
        XWindowAttributes state;
        if (!XGetWindowAttributes(display_, children[i], &state)) continue;
        const bool is_large = std::min(state.width, state.height) >= least_menu_side;
        const bool is_shown = state.map_state == IsViewable && state.override_redirect;
        if (is_shown && is_large && !is_tooltip(display_, children[i])) found.insert(children[i]);
    }
    if (children) XFree(children);
    return found;
}

Rectangle Screen::place_of(unsigned long window) const {
    Window root, child;
    int x = 0, y = 0;
    unsigned width = 0, height = 0, border, depth;
    XGetGeometry(display_, window, &root, &x, &y, &width, &height, &border, &depth);
    XTranslateCoordinates(display_, window, root, 0, 0, &x, &y, &child);
    return {x, y, static_cast<int>(width), static_cast<int>(height)};
}

}  // namespace test
