#include "appkit/light_start.h"

#include <Foundation/Foundation.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include "objc/method_patch.h"

namespace {

// The input method that waits to be opened, and its display. A process has one and keeps it.
id waiting;
Display* its_display;

IMP stock_open, stock_focus, stock_lookup;

BOOL open_later(id self, SEL, Display* display) {
    waiting = self;
    its_display = display;
    return YES;
}

void focus(id self, SEL selector, void* window) {
    if (self == waiting) return;  // the first key sets the focus
    reinterpret_cast<void (*)(id, SEL, void*)>(stock_focus)(self, selector, window);
}

// A key without a character, such as Escape, an arrow or Shift. Such a key begins no character of
// several keys. Those of the input methods themselves stand in the middle of the others.
bool has_no_character(const XKeyEvent* key) {
    XKeyEvent asked = *key;
    KeySym symbol = NoSymbol;
    XLookupString(&asked, nullptr, 0, &symbol, nullptr);
    const bool is_for_input_method = symbol >= XK_Multi_key && symbol < XK_Home;
    return symbol >= XK_BackSpace && symbol <= XK_Delete && !is_for_input_method;
}

// Opens the input method and gives it the key, which it would otherwise have seen before the
// application did. True if it keeps the key, as it does with the first of several that make a
// character.
bool open_with_key(id self, XKeyEvent* key, void* window) {
    waiting = nil;
    using Open = BOOL (*)(id, SEL, Display*);
    if (!reinterpret_cast<Open>(stock_open)(self, @selector(ximInit:), its_display)) return false;
    focus(self, @selector(ximFocusICWindow:), window);
    XEvent event = {};
    event.xkey = *key;
    return XFilterEvent(&event, None);
}

NSString* look_up(id self, SEL selector, XKeyEvent* key, void* window, KeySym* symbol) {
    if (self == waiting && !has_no_character(key) && open_with_key(self, key, window)) {
        if (symbol) *symbol = NoSymbol;
        return nil;
    }
    using Lookup = NSString* (*)(id, SEL, XKeyEvent*, void*, KeySym*);
    return reinterpret_cast<Lookup>(stock_lookup)(self, selector, key, window, symbol);
}

}  // namespace

// Replaces all three methods or none: an input method that is put off must be opened later.
void put_off_input_method() {
    const MethodPatch patches[] = {
        {"XIMInputServer", "ximInit:", reinterpret_cast<IMP>(open_later), &stock_open},
        {"XIMInputServer", "ximFocusICWindow:", reinterpret_cast<IMP>(focus), &stock_focus},
        {"XIMInputServer", "lookupStringForEvent:window:keysym:", reinterpret_cast<IMP>(look_up),
         &stock_lookup},
    };
    Class input_server = objc_getClass("XIMInputServer");
    for (const MethodPatch& patch : patches) {
        if (!class_getInstanceMethod(input_server, sel_registerName(patch.selector))) return;
    }
    patch_methods(patches);
}
