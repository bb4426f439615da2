// What NSEvent answers about the present moment, where GNUstep always answers 0.
#include <AppKit/AppKit.h>
#include <host/modifier_keys.h>

#include "desktop/desktop_settings.h"
#include "objc/method_patch.h"
#include "x11/pointer_place.h"

#include <X11/X.h>

namespace {

NSUInteger modifier_flags(id, SEL) { return current_modifier_flags(); }

// The Mac counts left, right, middle; X left, middle, right.
NSUInteger pressed_mouse_buttons(id, SEL) {
    const unsigned state = pointer_state();
    NSUInteger buttons = 0;
    if (state & Button1Mask) buttons |= 1 << 0;
    if (state & Button3Mask) buttons |= 1 << 1;
    if (state & Button2Mask) buttons |= 1 << 2;
    return buttons;
}

IMP stock_mouse_location;

// GNUstep asks over the application's connection, which belongs to the main thread.
NSPoint mouse_location(id event_class, SEL selector) {
    const PointerPlace place = pointer_place();
    if (place.display_height) return NSMakePoint(place.x, place.display_height - place.y);
    using Location = NSPoint (*)(id, SEL);
    return reinterpret_cast<Location>(stock_mouse_location)(event_class, selector);
}

// The back end's own setting for click counts, in milliseconds; else the desktop's.
NSTimeInterval double_click_interval(id, SEL) {
    double set = [[NSUserDefaults standardUserDefaults] doubleForKey:@"GSDoubleClickTime"] / 1000;
    if (set <= 0 && [NSThread isMainThread]) set = DesktopSettings().double_click_interval();
    return set > 0 && set <= 5 ? set : 0.3;
}

}  // namespace

@interface EventMethodsInstaller : NSObject
@end

@implementation EventMethodsInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSEvent", "modifierFlags", reinterpret_cast<IMP>(modifier_flags), nullptr, true},
        {"NSEvent", "pressedMouseButtons", reinterpret_cast<IMP>(pressed_mouse_buttons), nullptr,
         true},
        {"NSEvent", "mouseLocation", reinterpret_cast<IMP>(mouse_location), &stock_mouse_location,
         true},
        {"NSEvent", "doubleClickInterval", reinterpret_cast<IMP>(double_click_interval), nullptr,
         true},
    };
    patch_methods(patches);
}

@end
