// An X event of any type with any fields, as another program can send it.
#pragma once

#include <X11/Xlib.h>

#include <algorithm>
#include <vector>

#include "input.h"

namespace fuzz {

class SentEvent {
  public:
    // `windows` are those that exist; some fields are numbers that no window has.
    SentEvent(Input& input, Display* display, const std::vector<Window>& windows)
        : input_(input), display_(display), windows_(windows) {
        event_.type = 2 + input.byte() % (LASTEvent - 2);
        event_.xany.window = window();
        fill();
    }
    XEvent& event() { return event_; }

  private:
    int small() { return input_.number<int16_t>(); }
    Window window() {
        const uint8_t which = input_.byte();
        if (which % 8 == 7) return None;
        if (which % 8 == 6) return input_.number<uint32_t>();
        return windows_[which / 8 % windows_.size()];
    }
    Atom atom() {
        static const char* const names[] = {"WM_PROTOCOLS",  "WM_DELETE_WINDOW",
                                            "WM_TAKE_FOCUS", "_NET_WM_PING",
                                            "XdndEnter",     "XdndPosition",
                                            "XdndStatus",    "XdndLeave",
                                            "XdndDrop",      "XdndFinished",
                                            "XdndSelection", "_GNUSTEP_WM_ATTR",
                                            "_NET_WM_STATE", "_GNUSTEP_TITLEBAR_STATE",
                                            "CLIPBOARD",     "TARGETS",
                                            "_XEMBED",       "WM_STATE",
                                            "UTF8_STRING",   "_NET_FRAME_EXTENTS"};
        const uint8_t which = input_.byte();
        if (which >= 0xF0) return input_.number<uint32_t>();
        return XInternAtom(display_, names[which % (sizeof names / sizeof *names)], False);
    }
    // Keys, buttons, moves and crossings have their fields in the same places.
    template <typename Event>
    void fill_pointer(Event& to) {
        to.root = window();
        to.subwindow = window();
        to.time = input_.number<uint32_t>();
        to.x = small();
        to.y = small();
        to.x_root = small();
        to.y_root = small();
        to.state = input_.number<uint16_t>();
        to.same_screen = input_.byte() & 1;
    }
    // The server keeps as many pixels for a window as the window's program believes it to have, so
    // one side or the other is long.
    template <typename Event>
    void fill_area(Event& to) {
        to.x = small();
        to.y = small();
        to.width = input_.number<uint16_t>();
        to.height = std::min<int>(input_.number<uint16_t>(), (1 << 22) / (to.width + 1));
    }
    void fill_message(XClientMessageEvent& to) {
        to.message_type = atom();
        static const int formats[] = {32, 32, 32, 16, 8};
        to.format = formats[input_.byte() % 5];
        for (long& word : to.data.l) {
            const uint8_t kind = input_.byte() % 4;
            word = kind == 0   ? static_cast<long>(atom())
                   : kind == 1 ? static_cast<long>(window())
                               : input_.number<int32_t>();
        }
    }
    void fill_selection() {
        if (event_.type == SelectionClear) {
            event_.xselectionclear.selection = atom();
            event_.xselectionclear.time = input_.number<uint32_t>();
        } else if (event_.type == SelectionRequest) {
            event_.xselectionrequest.requestor = window();
            event_.xselectionrequest.selection = atom();
            event_.xselectionrequest.target = atom();
            event_.xselectionrequest.property = atom();
        } else {
            event_.xselection.selection = atom();
            event_.xselection.target = atom();
            event_.xselection.property = atom();
            event_.xselection.time = input_.number<uint32_t>();
        }
    }
    void fill();

    Input& input_;
    Display* display_;
    const std::vector<Window>& windows_;
    XEvent event_ = {};
};

inline void SentEvent::fill() {
    switch (event_.type) {
        case KeyPress:
        case KeyRelease:
            fill_pointer(event_.xkey);
            event_.xkey.keycode = input_.byte();
            return;
        case ButtonPress:
        case ButtonRelease:
            fill_pointer(event_.xbutton);
            event_.xbutton.button = input_.byte();
            return;
        case MotionNotify:
            fill_pointer(event_.xmotion);
            event_.xmotion.is_hint = static_cast<char>(input_.byte());
            return;
        case EnterNotify:
        case LeaveNotify:
            fill_pointer(event_.xcrossing);
            event_.xcrossing.mode = input_.byte();
            event_.xcrossing.detail = input_.byte();
            return;
        case FocusIn:
        case FocusOut:
            event_.xfocus.mode = input_.byte();
            event_.xfocus.detail = input_.byte();
            return;
        case Expose:
            fill_area(event_.xexpose);
            event_.xexpose.count = input_.byte();
            return;
        case ConfigureNotify:
            event_.xconfigure.window = window();
            event_.xconfigure.above = window();
            fill_area(event_.xconfigure);
            event_.xconfigure.override_redirect = input_.byte() & 1;
            return;
        case ReparentNotify:
            event_.xreparent.window = window();
            event_.xreparent.parent = window();
            event_.xreparent.x = small();
            event_.xreparent.y = small();
            return;
        case DestroyNotify:
        case UnmapNotify:
        case MapNotify:
        case GravityNotify:
        case CirculateNotify:
            event_.xdestroywindow.window = window();
            return;
        case PropertyNotify:
            event_.xproperty.atom = atom();
            event_.xproperty.state = input_.byte();
            return;
        case SelectionClear:
        case SelectionRequest:
        case SelectionNotify:
            return fill_selection();
        case ClientMessage:
            return fill_message(event_.xclient);
        case MappingNotify:
            event_.xmapping.request = input_.byte();
            event_.xmapping.first_keycode = input_.byte();
            event_.xmapping.count = input_.byte();
            return;
        default:
            return;
    }
}

}  // namespace fuzz
