#include "menus/pointer_tracker.h"

#include <algorithm>
#include <cstdlib>

#include "menus/item_view_events.h"
#include "menus/menu_items.h"
#include "x11/screens.h"

namespace {

const double hold_limit = 0.5;  // a button held as long means press-drag-release
const double scroll_interval = 0.02;
const int wheel_rows = 3;

unsigned button_of(NSEvent* event) {
    switch ([event type]) {
        case NSLeftMouseDown:
        case NSLeftMouseUp:
            return 1;
        case NSRightMouseDown:
        case NSRightMouseUp:
            return 2;
        default:
            return 4;
    }
}

// Events of the grab come with the root level's window, other events with a window that knows its
// place.
MenuPoint place_of(NSEvent* event) {
    const NSPoint at = [event locationInWindow];
    NSWindow* window = [event window];
    return window ? server_point([window convertBaseToScreen:at]) : current_pointer().at;
}

}  // namespace

void PointerTracker::begin(NSEvent* event, const Pointer& pointer) {
    place_ = origin_ = pointer.at;
    if (event) {
        NSWindow* window = [event window];
        const NSPoint at = [event locationInWindow];
        origin_ = server_point(window ? [window convertBaseToScreen:at] : at);
    }
    pressed_ = event ? [event timestamp] : 0;
    buttons_ = pointer.buttons;
    button_down_ = buttons_ != 0;
    note_shown();
    input(button_down_ ? input_open_pressed : input_open_free);
}

void PointerTracker::note_shown() { shown_ = seconds_now(); }

bool PointerTracker::handle(NSEvent* event) {
    switch ([event type]) {
        case NSMouseMoved:
        case NSLeftMouseDragged:
        case NSRightMouseDragged:
        case NSOtherMouseDragged:
            return move(event);
        case NSLeftMouseDown:
        case NSRightMouseDown:
        case NSOtherMouseDown:
            return press(event);
        case NSLeftMouseUp:
        case NSRightMouseUp:
        case NSOtherMouseUp:
            return release(event);
        case NSScrollWheel:
            return turn_wheel(event);
        default:
            return false;
    }
}

void PointerTracker::input(TrackingInput input) {
    const Transition step = transition(state_, input);
    state_ = step.next;
    apply(step.effect);
}

void PointerTracker::apply(TrackingEffect effect) {
    switch (effect) {
        case effect_arm:
            armed_ = true;
            break;
        case effect_pick:
            [levels_.session() pickItem:levels_.item_at(place_)];
            break;
        case effect_cancel:
            [levels_.session() cancel];
            break;
        case effect_start_scroll:
            scroll_.started = seconds_now();
            scroll_.timer.start(scroll_interval);
            break;
        case effect_stop_scroll:
            scroll_.timer.stop();
            break;
        case effect_none:
            break;
    }
}

bool PointerTracker::move(NSEvent* event) {
    const MenuPoint point = place_of(event);
    const bool moved = point.x != place_.x || point.y != place_.y;
    if (moved) {
        place_ = point;
        const int far = std::abs(point.x - origin_.x) + std::abs(point.y - origin_.y);
        if (far > levels_.style().look.drag_distance) moved_ = true;
        hover();
    }
    send_to_item_view(levels_, event, point);
    return moved;
}

void PointerTracker::hover() {
    const int level = levels_.level_at(place_);
    const int edge = level < 0 ? 0 : levels_[level].edge_at(place_);
    if (edge) {
        scroll_.level = level;
        scroll_.direction = edge;
        return input(input_enter_edge);
    }
    leave_edge();
    if (level < 0) {
        hover_.leave();
    } else {
        hover_.move_to(level, place_);
    }
}

void PointerTracker::leave_edge() {
    input(button_down_ ? input_leave_edge_pressed : input_leave_edge_free);
}

void PointerTracker::yield_to_keys() {
    hover_.stop();
    leave_edge();
}

bool PointerTracker::press(NSEvent* event) {
    button_down_ = true;
    buttons_ |= button_of(event);
    place_ = place_of(event);
    const int level = levels_.level_at(place_);
    if (level < 0) {
        input(input_press_outside);
        return true;
    }
    input(input_press_inside);
    if (send_to_item_view(levels_, event, place_) || levels_[level].edge_at(place_)) return true;
    hover_.stop_aiming();
    hover_.enter(level, place_);
    NSMenuItem* item = levels_[level].item_at(place_);
    if (can_highlight(item) && [item hasSubmenu]) hover_.open_submenu(item);
    return true;
}

// The events' own times count: a busy program sees the release of a quick click late. Times of
// different clocks may lie in the wrong order.
bool PointerTracker::is_held(NSEvent* release) const {
    const double by_events = [release timestamp] - pressed_;
    if (pressed_ > 0 && by_events >= 0) return by_events > hold_limit;
    return seconds_now() - shown_ > hold_limit;
}

TrackingInput PointerTracker::release_input(NSEvent* event) const {
    const bool meant = armed_ || moved_ || is_held(event);
    if (!meant) return input_release_stay;
    if (levels_.level_at(place_) < 0) return input_release_outside;
    NSMenuItem* item = levels_.item_at(place_);
    return can_pick(item) && ![item view] ? input_release_pick : input_release_stay;
}

bool PointerTracker::release(NSEvent* event) {
    // An event tap may have kept the press for itself.
    if (!(buttons_ & button_of(event))) return false;
    buttons_ &= ~button_of(event);
    button_down_ = false;
    place_ = place_of(event);
    send_to_item_view(levels_, event, place_);
    if ([levels_.session() isEnding]) return true;  // the view ended it
    input(release_input(event));
    armed_ = false;
    return true;
}

bool PointerTracker::turn_wheel(NSEvent* event) {
    const MenuPoint point = place_of(event);
    const int level = levels_.level_at(point);
    if (level < 0 || [event deltaY] == 0) return false;
    const double rows = -[event deltaY] * wheel_rows;
    if (!levels_[level].scroll_by(static_cast<int>(rows * levels_.style().look.row_height))) {
        return false;
    }
    place_ = point;
    hover_.stop_aiming();
    if (!levels_[level].edge_at(point)) hover_.enter(level, point);
    return true;
}

void PointerTracker::run_timers() {
    Deadline hover_timer = {hover_.due()};
    if (hover_timer.is_due()) hover_.rest(place_);
    if (scroll_.timer.is_due()) scroll_on();
}

// Scrolling is faster the deeper the pointer is in the strip and the longer it stays.
int PointerTracker::scroll_step(const MenuLevel& level) const {
    const MenuLook& look = levels_.style().look;
    const Area& panel = level.panel();
    const int depth = scroll_.direction > 0 ? place_.y - (panel.bottom() - look.arrow_height)
                                            : panel.top + look.arrow_height - place_.y;
    const double slowest = look.row_height * 0.25;
    const double deeper = 1 + 4.0 * depth / look.arrow_height;
    const double longer = std::min(20.0, 1 + 2 * (seconds_now() - scroll_.started));
    return static_cast<int>(slowest * deeper * longer);
}

void PointerTracker::scroll_on() {
    scroll_.timer.stop();
    if (state_ != state_scrolling || scroll_.level >= static_cast<int>(levels_.size())) return;
    MenuLevel& level = levels_[scroll_.level];
    const bool goes_on = level.scroll_by(scroll_.direction * scroll_step(level));
    [levels_.session() highlightItem:nil inMenu:level.menu()];
    if (goes_on && level.edge_at(place_)) {
        scroll_.timer.start(scroll_interval);
    } else {
        hover();
    }
}
