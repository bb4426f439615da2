#include "support/managed_windows.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "support/window_properties.h"

namespace test {

namespace {

// The title bar of Openbox's own theme has squares at the right: minimise, maximise, close.
constexpr int from_minimise_to_close = 36;
constexpr long motif_resize = 2, motif_minimise = 8, motif_maximise = 16, motif_all = 1;

bool announces_close(Display* display, Window window) {
    const auto wanted = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    for (const long protocol : numbers_of(display, window, "WM_PROTOCOLS")) {
        if (protocol == wanted) return true;
    }
    return false;
}

bool has_one_size(Display* display, Window window) {
    const std::vector<long> hints = numbers_of(display, window, "_MOTIF_WM_HINTS");
    return hints.size() >= 2 && (hints[0] & 1) &&
           !(hints[1] & (motif_all | motif_resize | motif_minimise | motif_maximise));
}

struct Place {
    int left = 0, top = 0, width = 0, title_bar = 0, border = 0;
};

Place place_of(Display* display, Window window) {
    XWindowAttributes attributes = {};
    XGetWindowAttributes(display, window, &attributes);
    Place place;
    place.width = attributes.width;
    Window child = None;
    XTranslateCoordinates(display, window, DefaultRootWindow(display), 0, 0, &place.left,
                          &place.top, &child);
    const std::vector<long> frame = numbers_of(display, window, "_NET_FRAME_EXTENTS");
    if (frame.size() == 4) place.border = static_cast<int>(frame[1]);
    if (frame.size() == 4) place.title_bar = static_cast<int>(frame[2]);
    return place;
}

bool is_shown(Display* display, Window window) {
    XWindowAttributes attributes = {};
    return XGetWindowAttributes(display, window, &attributes) &&
           attributes.map_state == IsViewable && place_of(display, window).title_bar > 0;
}

}  // namespace

WindowManager::WindowManager() {
    const char* base = getenv("TMPDIR");
    folder_ = std::string(base ? base : "/tmp") + "/manager.XXXXXX";
    if (!mkdtemp(folder_.data())) throw std::runtime_error("no folder for the window manager");
    const std::string ready = folder_ + "/ready";
    process_ = fork();
    if (process_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        execlp("openbox", "openbox", "--sm-disable", "--startup", ("touch " + ready).c_str(),
               static_cast<char*>(nullptr));
        _exit(127);
    }
    for (int turn = 0; turn < 3000 && !std::filesystem::exists(ready); turn++) usleep(10000);
    if (!std::filesystem::exists(ready)) throw std::runtime_error("openbox did not start");
}

WindowManager::~WindowManager() {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
    std::filesystem::remove_all(folder_);
}

ManagedWindows::ManagedWindows() : display_(XOpenDisplay(nullptr)) {
    if (!display_) throw std::runtime_error("no X display");
}

ManagedWindows::~ManagedWindows() { XCloseDisplay(display_); }

std::vector<ManagedWindow> ManagedWindows::shown() const {
    // A window may disappear while it is queried.
    const auto handler = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    std::vector<ManagedWindow> windows;
    for (const long each : numbers_of(display_, DefaultRootWindow(display_), "_NET_CLIENT_LIST")) {
        const auto window = static_cast<Window>(each);
        if (!is_shown(display_, window)) continue;
        windows.push_back({window, title_of(display_, window), announces_close(display_, window),
                           has_one_size(display_, window)});
    }
    XSync(display_, False);
    XSetErrorHandler(handler);
    return windows;
}

std::optional<ManagedWindow> ManagedWindows::settled(const std::string& title) {
    for (const ManagedWindow& each : shown()) {
        if (each.title != title) continue;
        const ScreenPoint point = close_button(each);
        const std::string place = std::to_string(each.window) + " " + std::to_string(point.x) +
                                  " " + std::to_string(point.y);
        const bool stands_still = place == last_place_;
        last_place_ = place;
        if (stands_still) return each;
    }
    return std::nullopt;
}

ScreenPoint ManagedWindows::close_button(const ManagedWindow& window) const {
    const Place place = place_of(display_, window.window);
    return {place.left + place.width + place.border - place.title_bar / 2,
            place.top - place.title_bar / 2};
}

ScreenPoint ManagedWindows::minimise_button(const ManagedWindow& window) const {
    const ScreenPoint close = close_button(window);
    return {close.x - from_minimise_to_close, close.y};
}

bool ManagedWindows::has_keyboard(const ManagedWindow& window) const {
    Window focused = None;
    int revert = 0;
    XGetInputFocus(display_, &focused, &revert);
    return focused == window.window;
}

void ManagedWindows::ask_to_close(const ManagedWindow& window) {
    XEvent message = {};
    message.xclient.type = ClientMessage;
    message.xclient.window = window.window;
    message.xclient.message_type = XInternAtom(display_, "WM_PROTOCOLS", False);
    message.xclient.format = 32;
    message.xclient.data.l[0] = static_cast<long>(XInternAtom(display_, "WM_DELETE_WINDOW", False));
    XSendEvent(display_, window.window, False, NoEventMask, &message);
    XSync(display_, False);
}

void ManagedWindows::watch(const ManagedWindow& window) {
    XSelectInput(display_, window.window, StructureNotifyMask);
    XSync(display_, True);
}

bool ManagedWindows::was_hidden() {
    XEvent event;
    return XCheckTypedEvent(display_, UnmapNotify, &event);
}

}  // namespace test
