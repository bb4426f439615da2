#include <AppKit/ModifierKeys.h>

#include "appkit/pointer_connection.h"

// Xlib's names after AppKit's: some are the same.
#include <X11/Xlib.h>
#include <X11/keysym.h>

namespace {

// As in GNUstep's X back end, fallbacks included.
const struct {
    NSString* default_name;
    KeySym fallback;
    NSUInteger flag;
} keys[] = {
    {nil, XK_Shift_L, NSShiftKeyMask},
    {nil, XK_Shift_R, NSShiftKeyMask},
    {@"GSFirstControlKey", XK_Control_L, NSControlKeyMask},
    {@"GSSecondControlKey", XK_Control_R, NSControlKeyMask},
    {@"GSFirstCommandKey", XK_Alt_L, NSCommandKeyMask},
    {@"GSSecondCommandKey", NoSymbol, NSCommandKeyMask},
    {@"GSFirstAlternateKey", XK_Alt_R, NSAlternateKeyMask},
    {@"GSSecondAlternateKey", NoSymbol, NSAlternateKeyMask},
};

KeySym symbol_of(NSString* default_name, KeySym fallback) {
    NSString* name =
        default_name ? [[NSUserDefaults standardUserDefaults] stringForKey:default_name] : nil;
    return name ? XStringToKeysym([name UTF8String]) : fallback;
}

bool is_down(Display* display, const char* vector, KeySym symbol) {
    KeyCode code = symbol == NoSymbol ? 0 : XKeysymToKeycode(display, symbol);
    if (!code && symbol == XK_Alt_R) code = XKeysymToKeycode(display, XK_Mode_switch);
    return code && vector[code / 8] & (1 << (code % 8));
}

NSUInteger keyboard_flags() {
    Display* display = pointer_connection();
    if (!display) return 0;
    char vector[32] = {};
    XQueryKeymap(display, vector);
    NSUInteger flags = pointer_state() & LockMask ? NSAlphaShiftKeyMask : 0;
    for (const auto& key : keys) {
        if (is_down(display, vector, symbol_of(key.default_name, key.fallback))) flags |= key.flag;
    }
    return flags;
}

NSUInteger held_flags;

}  // namespace

void SetHeldModifierFlags(NSUInteger flags) { held_flags = flags; }

NSUInteger HeldModifierFlags(void) { return held_flags; }

NSUInteger CurrentModifierFlags(void) { return keyboard_flags() | held_flags; }
