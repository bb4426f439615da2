// Taps on the session's events: they see the buttons in every program's windows.
#include <CoreGraphics/CGEvent.h>

#include "events/event_tap.h"
#include "events/raw_buttons.h"
#include "events/server_points.h"

namespace {

struct ButtonTypes {
    CGEventType down, up;
    CGMouseButton button;
};

// False for other buttons, such as those by which X reports the wheel.
bool types_of(unsigned x_button, ButtonTypes* types) {
    switch (x_button) {
        case 1:
            *types = {kCGEventLeftMouseDown, kCGEventLeftMouseUp, kCGMouseButtonLeft};
            return true;
        case 2:
            *types = {kCGEventOtherMouseDown, kCGEventOtherMouseUp, kCGMouseButtonCenter};
            return true;
        case 3:
            *types = {kCGEventRightMouseDown, kCGEventRightMouseUp, kCGMouseButtonRight};
            return true;
        default:
            return false;
    }
}

constexpr CGEventMask seen_types =
    CGEventMaskBit(kCGEventLeftMouseDown) | CGEventMaskBit(kCGEventLeftMouseUp) |
    CGEventMaskBit(kCGEventRightMouseDown) | CGEventMaskBit(kCGEventRightMouseUp) |
    CGEventMaskBit(kCGEventOtherMouseDown) | CGEventMaskBit(kCGEventOtherMouseUp);

}  // namespace

@interface SessionTap : EventTap {
  @private
    RawButtons* _buttons;  // owned
    CGEventMask _mask;
}
- (instancetype)initWithSettings:(const TapSettings&)settings
                         buttons:(std::unique_ptr<RawButtons>)buttons;
- (void)readButtons;
@end

static void read_buttons(void* tap) { [static_cast<SessionTap*>(tap) readButtons]; }

@implementation SessionTap

- (instancetype)initWithSettings:(const TapSettings&)settings
                         buttons:(std::unique_ptr<RawButtons>)buttons {
    self = [super initWithSettings:settings
                        descriptor:buttons->descriptor()
                           handler:read_buttons
                              info:self];
    if (!self) return nil;
    _buttons = buttons.release();
    _mask = settings.mask;
    return self;
}

- (void)dealloc {
    [self invalidate];
    delete _buttons;
    [super dealloc];
}

- (void)readButtons {
    RawButton button;
    [[self retain] autorelease];
    while ([self isValid] && _buttons->next(&button)) [self showButton:button];
    // The descriptor of a display that has gone stays readable for ever.
    if (_buttons->is_broken()) [self invalidate];
}

- (void)showButton:(const RawButton&)button {
    ButtonTypes types;
    if (![self isEnabled] || !types_of(button.button, &types)) return;
    const CGEventType type = button.down ? types.down : types.up;
    if (!(_mask & CGEventMaskBit(type))) return;
    const CGPoint at = event_location({button.x, button.y}, button.display_height);
    CFRelease([self pass:CGEventCreateMouseEvent(nullptr, type, at, types.button)]);
}

@end

CFMachPortRef CGEventTapCreate(CGEventTapLocation location, CGEventTapPlacement,
                               CGEventTapOptions options, CGEventMask mask,
                               CGEventTapCallBack callback, void* user_info) {
    if (location != kCGSessionEventTap || options != kCGEventTapOptionListenOnly) return nullptr;
    if (!callback || !(mask & seen_types)) return nullptr;
    std::unique_ptr<RawButtons> buttons = RawButtons::open();
    if (!buttons) return nullptr;
    const TapSettings settings = {mask, callback, user_info, true};
    SessionTap* tap = [[SessionTap alloc] initWithSettings:settings buttons:std::move(buttons)];
    return (CFMachPortRef)tap;
}
