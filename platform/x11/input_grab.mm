#include "x11/input_grab.h"

#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>
#include <objc/runtime.h>
#include <unistd.h>

#include "objc/method_patch.h"
#include "x11/server_windows.h"
#include "x11/toolkit_display.h"

@interface NSObject (InputMethod)
+ (void*)_windowWithTag:(int)number;
- (void)ximFocusICWindow:(void*)device;
@end

void set_mouse_up() {
    static bool done;
    id server = GSCurrentServer();
    if (!done && [server respondsToSelector:@selector(initializeMouse)]) {
        [server performSelector:@selector(initializeMouse)];
    }
    done = true;
}

namespace {

IMP stock_set_focus, stock_lookup, stock_deactivate;
bool keeps_focus, holds_keyboard, was_deactivated;
void* grabbing_device;  // the back end's record of the window that holds the keyboard, or null

// The toolkit takes every key for one of the key window's, and asks that window's input context.
// Xlib itself puts keys of the number 0 in the queue to say that a text is composed. When one comes
// from another program, Xlib reads a text that is not there.
NSString* look_up(id self, SEL selector, XKeyEvent* key, void* device, KeySym* symbol) {
    if (key->keycode == 0 && key->send_event) {
        if (symbol) *symbol = NoSymbol;
        return @"";
    }
    using Lookup = NSString* (*)(id, SEL, XKeyEvent*, void*, KeySym*);
    return reinterpret_cast<Lookup>(stock_lookup)(self, selector, key, grabbing_device ?: device,
                                                  symbol);
}

void set_focus(id self, SEL selector, int window) {
    if (keeps_focus) return;
    reinterpret_cast<void (*)(id, SEL, int)>(stock_set_focus)(self, selector, window);
}

// A grab looks to the toolkit as if the focus had left the application, which would then have no
// key window and no keys.
void deactivate(id self, SEL selector) {
    was_deactivated = was_deactivated || holds_keyboard;
    if (!holds_keyboard) reinterpret_cast<void (*)(id, SEL)>(stock_deactivate)(self, selector);
}

bool has_focus() {
    for (NSWindow* window in [NSApp windows]) {
        if (window_has_keyboard(window)) return true;
    }
    return false;
}

// Tells the application what was kept from it during the grab.
void deactivate_late() {
    holds_keyboard = false;
    if (was_deactivated && !has_focus()) [NSApp deactivate];
    was_deactivated = false;
}

// The back end is loaded after this library, so its methods are replaced before the first grab.
void replace_methods() {
    static const MethodPatch patches[] = {
        {"XGServer", "setinputfocus:", reinterpret_cast<IMP>(set_focus), &stock_set_focus},
        {"XIMInputServer", "lookupStringForEvent:window:keysym:", reinterpret_cast<IMP>(look_up),
         &stock_lookup},
        {"NSApplication", "deactivate", reinterpret_cast<IMP>(deactivate), &stock_deactivate},
    };
    if (!stock_set_focus) patch_methods(patches);
}

// Makes the window the application's key window. The window below keeps the server's focus, and
// with it the look of a window in use: the grab brings the keys here without the focus.
void become_key_without_focus(NSWindow* window) {
    keeps_focus = true;
    @try {
        [window becomeKeyWindow];
    } @finally {
        keeps_focus = false;
    }
}

// Leads the input method to a window, and returns the back end's record of it. Without the input
// method, dead keys and scripts of many characters type nothing.
void* lead_input_method_to(NSWindow* window) {
    id server = GSCurrentServer();
    const Ivar field = class_getInstanceVariable([server class], "inputServer");
    id method = window && field ? object_getIvar(server, field) : nil;
    if (![method respondsToSelector:@selector(ximFocusICWindow:)]) return nullptr;
    void* device = [[server class] _windowWithTag:static_cast<int>([window windowNumber])];
    if (device) [method ximFocusICWindow:device];
    return device;
}

}  // namespace

bool InputGrab::take(NSWindow* window) {
    release();
    set_mouse_up();
    replace_methods();
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
    holds_keyboard = true;
    take_keyboard();
    // GNUstep throws keys away while the application has no key window.
    if (![NSApp keyWindow]) {
        become_key_without_focus(window);
        became_key_ = true;
    }
    grabbing_device = lead_input_method_to(window);
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
    grabbing_device = nullptr;
    lead_input_method_to([NSApp keyWindow]);
    deactivate_late();
    XSync(toolkit_display(), False);
    [window_ release];
    window_ = nil;
}
