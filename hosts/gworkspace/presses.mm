#include "gworkspace/presses.h"

#include <AppKit/AppKit.h>
#include <objc/runtime.h>

#include <cmath>

#include "gworkspace/file_menu.h"
#include "gworkspace/file_place.h"

namespace {

constexpr NSUInteger key_flags =
    NSShiftKeyMask | NSControlKeyMask | NSAlternateKeyMask | NSCommandKeyMask;
constexpr double drag_distance = 4;
constexpr double drag_wait = 0.25;  // seconds

bool is_control_press(NSEvent* event) {
    if ([event type] != NSLeftMouseDown) return false;
    const NSUInteger keys = [event modifierFlags] & key_flags & ~NSShiftKeyMask;
    return keys == NSControlKeyMask;
}

bool is_menu_press(NSEvent* event) {
    return [event type] == NSRightMouseDown || is_control_press(event);
}

bool is_far(NSPoint from, NSPoint to) {
    return std::hypot(to.x - from.x, to.y - from.y) > drag_distance;
}

// Whether a Control-press becomes a drag, which makes links. Then its events stay in the queue; for
// a mere click the release is taken out.
bool becomes_drag(NSEvent* press) {
    NSDate* deadline = [NSDate dateWithTimeIntervalSinceNow:drag_wait];
    for (;;) {
        NSEvent* next = [NSApp nextEventMatchingMask:NSLeftMouseUpMask | NSLeftMouseDraggedMask
                                           untilDate:deadline
                                              inMode:NSEventTrackingRunLoopMode
                                             dequeue:NO];
        if (!next) return false;
        const bool drags = [next type] == NSLeftMouseDragged;
        if (drags && is_far([press locationInWindow], [next locationInWindow])) return true;
        [NSApp nextEventMatchingMask:NSEventMaskFromType([next type])
                           untilDate:[NSDate distantPast]
                              inMode:NSEventTrackingRunLoopMode
                             dequeue:YES];
        if (!drags) return false;
    }
}

// Turns a Control-click into the right-click that it stands for.
NSEvent* right_press(NSEvent* event) {
    if ([event type] == NSRightMouseDown) return event;
    return [NSEvent mouseEventWithType:NSRightMouseDown
                              location:[event locationInWindow]
                         modifierFlags:[event modifierFlags] & ~NSControlKeyMask
                             timestamp:[event timestamp]
                          windowNumber:[event windowNumber]
                               context:nil
                           eventNumber:[event eventNumber]
                            clickCount:1
                              pressure:[event pressure]];
}

bool pop_up_menu(NSWindow* window, NSEvent* event) {
    FilePlace* place = [FilePlace placeOfEvent:event inWindow:window];
    if (!place) return false;
    if (is_control_press(event) && becomes_drag(event)) return false;
    pop_up_file_menu(place, right_press(event));
    return true;
}

}  // namespace

@interface NSWindow (DelvioGWorkspace)
- (void)delvioSendEvent:(NSEvent*)event;
@end

@implementation NSWindow (DelvioGWorkspace)

- (void)delvioSendEvent:(NSEvent*)event {
    if (is_menu_press(event) && [self isVisible] && pop_up_menu(self, event)) return;
    [self delvioSendEvent:event];
}

@end

void take_menu_presses() {
    Class window = [NSWindow class];
    method_exchangeImplementations(class_getInstanceMethod(window, @selector(sendEvent:)),
                                   class_getInstanceMethod(window, @selector(delvioSendEvent:)));
}
