#include "x11/input_grab.h"

#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>
#include <unistd.h>

#include "x11/toolkit_display.h"

namespace {

// GNUstep sets the mouse up at the first press, and first handles the events that come during the
// setup: a quick click would arrive with its release before its press.
void set_mouse_up() {
    static bool done;
    id server = GSCurrentServer();
    if (!done && [server respondsToSelector:@selector(initializeMouse)]) {
        [server performSelector:@selector(initializeMouse)];
    }
    done = true;
}

}  // namespace

bool InputGrab::take(NSWindow* window) {
    release();
    set_mouse_up();
    // This does not use -capturemouse, which sends the time of GNUstep's last event: the server
    // refuses that time when another program has held the pointer since. All events come with this
    // window.
    const auto grab = [window] {
        return XGrabPointer(toolkit_display(), server_window(window), False,
                            PointerMotionMask | ButtonPressMask | ButtonReleaseMask, GrabModeAsync,
                            GrabModeAsync, None, None, CurrentTime) == GrabSuccess;
    };
    // Another program, often the one that sent the click, may hold the pointer a moment longer.
    bool held = grab();
    for (int tries = 0; !held && tries < 100; tries++) {
        usleep(10000);
        held = grab();
    }
    if (!held) return false;
    window_ = [window retain];
    take_keyboard();
    // GNUstep throws keys away while the application has no key window.
    if (![NSApp keyWindow]) {
        [window becomeKeyWindow];
        became_key_ = true;
    }
    return true;
}

bool InputGrab::take_keyboard() {
    if (window_ && !keyboard_) {
        keyboard_ = XGrabKeyboard(toolkit_display(), server_window(window_), False, GrabModeAsync,
                                  GrabModeAsync, CurrentTime) == GrabSuccess;
    }
    return keyboard_;
}

void InputGrab::release() {
    if (!window_) return;
    XUngrabPointer(toolkit_display(), CurrentTime);
    if (keyboard_) XUngrabKeyboard(toolkit_display(), CurrentTime);
    keyboard_ = false;
    if (became_key_) [window_ resignKeyWindow];
    became_key_ = false;
    XSync(toolkit_display(), False);
    [window_ release];
    window_ = nil;
}
