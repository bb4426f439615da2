#include "support/x_input.h"

#include <X11/Xlib-xcb.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xfixes.h>
#include <xcb/xcb.h>

#include <stdlib.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace test {

namespace {

// Takes the reply over.
template <typename Reply>
bool was_free(Reply* reply) {
    const bool is_free = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    free(reply);
    return is_free;
}

}  // namespace

XInput::XInput() : display_(XOpenDisplay(nullptr)) {
    if (!display_) throw std::runtime_error("no X display");
    XTestGrabControl(display_, True);
}

XInput::~XInput() {
    let_go();
    XCloseDisplay(display_);
}

void XInput::move(int x, int y) {
    XTestFakeMotionEvent(display_, -1, x, y, CurrentTime);
    XSync(display_, False);
}

void XInput::fake_button(int button, bool down, unsigned long delay) {
    held_buttons_ = down ? held_buttons_ | 1u << button : held_buttons_ & ~(1u << button);
    XTestFakeButtonEvent(display_, static_cast<unsigned>(button), down, delay);
}

void XInput::press(int button) {
    fake_button(button, true);
    XSync(display_, False);
}

void XInput::release(int button) {
    fake_button(button, false);
    XSync(display_, False);
}

void XInput::click(int button) {
    fake_button(button, true);
    fake_button(button, false);
    XSync(display_, False);
}

void XInput::click_of(int button, unsigned milliseconds) {
    fake_button(button, true);
    fake_button(button, false, milliseconds);
    XFlush(display_);
}

unsigned XInput::code(const std::string& name) {
    if (name[0] == '#') return static_cast<unsigned>(std::stoul(name.substr(1)));
    const KeySym symbol = XStringToKeysym(name.c_str());
    if (symbol == NoSymbol) throw std::runtime_error("no key of this name: " + name);
    return XKeysymToKeycode(display_, symbol);
}

void XInput::send_key(unsigned long window, unsigned number) {
    XEvent event = {};
    event.xkey.type = KeyPress;
    event.xkey.window = window;
    event.xkey.root = DefaultRootWindow(display_);
    event.xkey.same_screen = True;
    event.xkey.keycode = number;
    XSendEvent(display_, window, False, NoEventMask, &event);
    XSync(display_, False);
}

void XInput::send_size(unsigned long window, int width, int height) {
    XEvent event = {};
    event.xconfigure.type = ConfigureNotify;
    event.xconfigure.event = event.xconfigure.window = window;
    event.xconfigure.width = width;
    event.xconfigure.height = height;
    event.xconfigure.override_redirect = True;
    XSendEvent(display_, window, False, NoEventMask, &event);
    XSync(display_, False);
}

std::string XInput::place_of(const std::string& name) { return "#" + std::to_string(code(name)); }

std::string XInput::new_key(const std::string& name) {
    int first = 0, last = 0, width = 0;
    XDisplayKeycodes(display_, &first, &last);
    KeySym symbol = XStringToKeysym(name.c_str());
    if (symbol == NoSymbol) throw std::runtime_error("no key of this name: " + name);
    for (int code = last; code >= first; code--) {
        KeySym* known = XGetKeyboardMapping(display_, static_cast<KeyCode>(code), 1, &width);
        const bool is_free = std::all_of(known, known + width, [](KeySym s) { return !s; });
        XFree(known);
        if (!is_free) continue;
        XChangeKeyboardMapping(display_, code, 1, &symbol, 1);
        XSync(display_, False);
        return "#" + std::to_string(code);
    }
    throw std::runtime_error("no free key");
}

void XInput::fake_key(const std::string& name, bool down) {
    XTestFakeKeyEvent(display_, code(name), down, CurrentTime);
    XSync(display_, False);
}

void XInput::key_down(const std::string& name) {
    held_keys_ += name + " ";
    fake_key(name, true);
}

void XInput::key_up(const std::string& name) {
    const size_t at = held_keys_.find(name + " ");
    if (at != std::string::npos) held_keys_.erase(at, name.size() + 1);
    fake_key(name, false);
}

void XInput::key(const std::string& name) {
    key_down(name);
    key_up(name);
}

void XInput::let_go() {
    std::istringstream names(held_keys_);
    for (std::string name; names >> name;) key_up(name);
    for (int button = 1; button <= 5; button++) {
        if (held_buttons_ & 1u << button) release(button);
    }
}

// Taking and giving back reach the server together: nobody else meets a pointer that is held for
// long, however busy the machine is.
bool XInput::keyboard_is_free() {
    xcb_connection_t* server = XGetXCBConnection(display_);
    const auto root = static_cast<xcb_window_t>(DefaultRootWindow(display_));
    const auto question = xcb_grab_keyboard(server, false, root, XCB_CURRENT_TIME,
                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_ungrab_keyboard(server, XCB_CURRENT_TIME);
    return was_free(xcb_grab_keyboard_reply(server, question, nullptr));
}

bool XInput::pointer_is_free() {
    xcb_connection_t* server = XGetXCBConnection(display_);
    const auto root = static_cast<xcb_window_t>(DefaultRootWindow(display_));
    const auto question =
        xcb_grab_pointer(server, false, root, XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    xcb_ungrab_pointer(server, XCB_CURRENT_TIME);
    return was_free(xcb_grab_pointer_reply(server, question, nullptr));
}

void XInput::focus(unsigned long window) {
    XSetInputFocus(display_, window, RevertToPointerRoot, CurrentTime);
    XSync(display_, False);
}

unsigned long XInput::focused() const {
    Window focused = None;
    int revert = 0;
    XGetInputFocus(display_, &focused, &revert);
    return focused;
}

unsigned long XInput::new_window() {
    const Window window =
        XCreateSimpleWindow(display_, DefaultRootWindow(display_), 10, 10, 60, 40, 0, 0, 0);
    XSelectInput(display_, window, StructureNotifyMask);
    XMapWindow(display_, window);
    XEvent event;
    XWindowEvent(display_, window, StructureNotifyMask, &event);
    XSync(display_, False);
    return window;
}

unsigned long XInput::cursor() {
    XFixesCursorImage* image = XFixesGetCursorImage(display_);
    if (!image) throw std::runtime_error("no cursor");
    unsigned long sum = image->width * 31 + image->height;
    for (int i = 0; i < image->width * image->height; i++) sum = sum * 31 + image->pixels[i];
    XFree(image);
    return sum;
}

unsigned long XInput::pixel(int x, int y) { return pixels(x, y, 1, 1).front(); }

std::vector<unsigned long> XInput::pixels(int x, int y, int width, int height) {
    XImage* image =
        XGetImage(display_, DefaultRootWindow(display_), x, y, static_cast<unsigned>(width),
                  static_cast<unsigned>(height), AllPlanes, ZPixmap);
    if (!image) throw std::runtime_error("no such pixels");
    std::vector<unsigned long> colors;
    for (int row = 0; row < height; row++) {
        for (int column = 0; column < width; column++) {
            colors.push_back(XGetPixel(image, column, row) & 0xFFFFFF);
        }
    }
    XDestroyImage(image);
    return colors;
}

}  // namespace test
