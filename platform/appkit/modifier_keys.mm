#include <host/modifier_keys.h>

#include "wayland/menu_stage.h"
#include "x11/pointer_place.h"
#include "x11/question_connection.h"

// Xlib's headers come after AppKit's, as some of their names are the same.
#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/keysym.h>

namespace {

// The keys, each with the user default that names another key in its place. GNUstep's own choice,
// left Alt for Command and right Alt for Option, leaves no Option on a keyboard that has AltGr on
// the right.
const struct Slot {
    NSString* default_name;
    KeySym symbol;
    NSUInteger flag;
} slots[] = {
    {nil, XK_Shift_L, NSShiftKeyMask},
    {nil, XK_Shift_R, NSShiftKeyMask},
    {@"GSFirstControlKey", XK_Control_L, NSControlKeyMask},
    {@"GSSecondControlKey", XK_Control_R, NSControlKeyMask},
    {@"GSFirstCommandKey", XK_Super_L, NSCommandKeyMask},
    {@"GSSecondCommandKey", XK_Super_R, NSCommandKeyMask},
    {@"GSFirstAlternateKey", XK_Alt_L, NSAlternateKeyMask},
    {@"GSSecondAlternateKey", XK_Alt_R, NSAlternateKeyMask},
    {nil, XK_ISO_Level3_Shift, NSAlternateKeyMask},
    {nil, XK_Mode_switch, NSAlternateKeyMask},
};

NSString* chosen_name(const Slot& slot) {
    if (!slot.default_name) return nil;
    return [[NSUserDefaults standardUserDefaults] stringForKey:slot.default_name];
}

// A key that the user has chosen for a modifier loses its usual meaning.
NSUInteger flags_of(KeySym symbol) {
    NSUInteger chosen = 0, usual = 0;
    for (const Slot& slot : slots) {
        NSString* name = chosen_name(slot);
        if (name && XStringToKeysym([name UTF8String]) == symbol) chosen |= slot.flag;
        if (!name && slot.symbol == symbol) usual |= slot.flag;
    }
    return chosen ? chosen : usual;
}

// The flags of the key in any of the keyboard's layouts.
NSUInteger flags_of_key(Display* display, KeyCode code) {
    NSUInteger flags = 0;
    for (unsigned group = 0; group < XkbNumKbdGroups; group++) {
        const KeySym symbol = XkbKeycodeToKeysym(display, code, group, 0);
        if (symbol != NoSymbol) flags |= flags_of(symbol);
    }
    return flags;
}

// The X server does not see the keys that a Wayland compositor gives to the menu's stage.
NSUInteger stage_flags() {
    NSUInteger flags = 0;
    for (const uint32_t symbol : stage_symbols()) flags |= flags_of(symbol);
    return flags;
}

NSUInteger keyboard_flags() {
    Display* display = question_connection();
    if (!display) return 0;
    char vector[32] = {};
    XQueryKeymap(display, vector);
    NSUInteger flags = pointer_state() & LockMask ? NSAlphaShiftKeyMask : 0;
    for (int code = 8; code < 256; code++) {
        if (vector[code / 8] & (1 << (code % 8))) {
            flags |= flags_of_key(display, static_cast<KeyCode>(code));
        }
    }
    return flags;
}

NSUInteger held_flags;

}  // namespace

void set_held_modifier_flags(NSUInteger flags) { held_flags = flags; }

NSUInteger held_modifier_flags(void) { return held_flags; }

NSUInteger current_modifier_flags(void) { return keyboard_flags() | stage_flags() | held_flags; }
