#include "menus/item_view_events.h"

#include "menus/menu_level_view.h"
#include "x11/screens.h"

namespace {

void send_mouse_event(NSView* view, NSEvent* event) {
    switch ([event type]) {
        case NSLeftMouseDown:
            return [view mouseDown:event];
        case NSLeftMouseDragged:
            return [view mouseDragged:event];
        case NSLeftMouseUp:
            return [view mouseUp:event];
        case NSRightMouseDown:
            return [view rightMouseDown:event];
        case NSRightMouseDragged:
            return [view rightMouseDragged:event];
        case NSRightMouseUp:
            return [view rightMouseUp:event];
        case NSMouseMoved:
            return [view mouseMoved:event];
        default:
            return;
    }
}

NSEvent* event_in_window(NSEvent* event, NSWindow* window, NSPoint at) {
    return [NSEvent mouseEventWithType:[event type]
                              location:at
                         modifierFlags:[event modifierFlags]
                             timestamp:[event timestamp]
                          windowNumber:[window windowNumber]
                               context:[event context]
                           eventNumber:[event eventNumber]
                            clickCount:[event clickCount]
                              pressure:[event pressure]];
}

}  // namespace

bool send_to_item_view(const MenuLevels& levels, NSEvent* event, MenuPoint point) {
    const int level = levels.level_at(point);
    NSView* view = level < 0 ? nil : [levels[level].item_at(point) view];
    if (!view || [view window] != levels[level].window()) return false;
    NSWindow* window = levels[level].window();
    const NSPoint at = [window convertScreenToBase:screen_point(point)];
    NSView* content = [window contentView];
    NSView* hit = [content hitTest:[[content superview] convertPoint:at fromView:nil]];
    if (!hit || hit == content || [hit isKindOfClass:[MenuItemHolder class]]) return true;
    send_mouse_event(hit, event_in_window(event, window, at));
    return true;
}
