// Pointer: hovering, pressing, scrolling.
#include <algorithm>
#include <cstdlib>

#include "menus/menu_level_view.h"

#include "menus/menu_items.h"
#include "menus/menu_run.h"

namespace {

const double hover_delay = 0.2;  // until a submenu opens
const double aim_limit = 0.35;   // for a move across other rows to an open submenu
const double hold_limit = 0.5;   // a button held as long means press-drag-release
const double scroll_interval = 0.02;
const int drag_distance = 5;
const int wheel_rows = 3;

double now() { return [NSDate timeIntervalSinceReferenceDate]; }

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

}  // namespace

// Events of the grab come as the root level's; others from windows that know their place.
point_t menu_run_t::location(NSEvent* event) const {
    const NSPoint at = [event locationInWindow];
    NSWindow* window = [event window];
    return window ? server_point([window convertBaseToScreen:at]) : current_pointer().at;
}

int menu_run_t::level_at(point_t point) const {
    for (size_t i = levels_.size(); i-- > 0;) {
        if (levels_[i]->contains(point)) return static_cast<int>(i);
    }
    return -1;
}

NSMenuItem* menu_run_t::parent_item(size_t index) const {
    if (index == 0 || index >= levels_.size()) return nil;
    NSMenu* submenu = levels_[index]->menu();
    NSMenuItem* highlighted = [session_ highlightedItemOfMenu:levels_[index - 1]->menu()];
    if ([highlighted submenu] == submenu) return highlighted;
    for (const menu_row_t& row : levels_[index - 1]->layout().rows()) {
        if ([row.item submenu] == submenu) return row.item;
    }
    return nil;
}

void menu_run_t::input(tracking_input_t input) {
    const transition_t step = transition(state_, input);
    state_ = step.next;
    switch (step.effect) {
        case effect_arm:
            armed_ = true;
            break;
        case effect_pick: {
            const int level = level_at(pointer_);
            if (level >= 0) [session_ pickItem:levels_[level]->item_at(pointer_)];
            break;
        }
        case effect_cancel:
            [session_ cancel];
            break;
        case effect_start_scroll:
            scroll_started_ = now();
            scroll_timer_.start(scroll_interval);
            break;
        case effect_stop_scroll:
            scroll_timer_.stop();
            break;
        case effect_none:
            break;
    }
}

// What the pointer does takes the lead from the keys.
void menu_run_t::point_to(point_t point) {
    pointer_ = point;
    key_level_ = -1;
}

void menu_run_t::pointer_moved(point_t point) {
    if (point.x == pointer_.x && point.y == pointer_.y) return;
    point_to(point);
    const int far = std::abs(point.x - origin_.x) + std::abs(point.y - origin_.y);
    if (far > drag_distance * style_.look.scale) moved_ = true;
    hover(point);
}

void menu_run_t::hover(point_t point) {
    const int level = level_at(point);
    const int edge = level < 0 ? 0 : levels_[level]->edge_at(point);
    if (edge) {
        scroll_level_ = level;
        scroll_direction_ = edge;
        input(input_enter_edge);
        return;
    }
    input(button_down_ ? input_leave_edge_pressed : input_leave_edge_free);
    if (level < 0) {
        leave();
    } else if (!is_aiming(level, point)) {
        hover_over(level, point);
    }
}

void menu_run_t::leave() {
    if (levels_.empty()) return;
    [session_ highlightItem:nil inMenu:levels_.back()->menu()];
    hover_timer_.stop();
    [hovered_ release];
    hovered_ = nil;
}

bool menu_run_t::is_aiming(int level, point_t point) {
    const bool child_open = level + 1 < static_cast<int>(levels_.size());
    const bool aims = child_open && levels_[level + 1]->is_shown() &&
                      levels_[level]->item_at(point) != parent_item(level + 1) &&
                      is_on_the_way(aim_from_, point, levels_[level + 1]->panel());
    if (!aims) {
        aiming_ = false;
    } else if (!aiming_) {
        aiming_ = true;
        hover_timer_.start(aim_limit);
    }
    return aims;
}

void menu_run_t::hover_over(int level, point_t point) {
    aim_from_ = point;
    for (int i = 0; i < level; i++) {
        [session_ highlightItem:parent_item(i + 1) inMenu:levels_[i]->menu()];
    }
    NSMenuItem* item = levels_[level]->item_at(point);
    const int deepest = static_cast<int>(levels_.size()) - 1;
    // Beside the rows the way to an open submenu stays shown.
    if (can_highlight(item) || level == deepest) {
        [session_ highlightItem:item inMenu:levels_[level]->menu()];
    }
    if (level < deepest) [session_ highlightItem:nil inMenu:levels_[deepest]->menu()];
    if (item == hovered_) return;
    [item retain];
    [hovered_ release];
    hovered_ = item;
    if (can_highlight(item)) {
        hover_timer_.start(hover_delay);
    } else {
        hover_timer_.stop();
    }
}

// The pointer has rested: the submenu of its row opens, that of another one closes.
void menu_run_t::rest() {
    if (aiming_) {
        aiming_ = false;
        aim_from_ = pointer_;
        const int level = level_at(pointer_);
        if (level >= 0) hover_over(level, pointer_);
        if (!hover_timer_.due) hover_timer_.start(hover_delay);
        return;
    }
    if (!can_highlight(hovered_) || [session_ highlightedItemOfMenu:[hovered_ menu]] != hovered_) {
        return;
    }
    if ([hovered_ hasSubmenu]) {
        [session_ openSubmenuOfItem:hovered_];
    } else {
        [session_ closeLevelsBelowMenu:[hovered_ menu]];
    }
}

void menu_run_t::open_submenu(NSMenuItem* item) {
    hover_timer_.stop();
    [session_ openSubmenuOfItem:item];
}

void menu_run_t::pressed(NSEvent* event, point_t point) {
    button_down_ = true;
    buttons_ |= button_of(event);
    point_to(point);
    const int level = level_at(point);
    if (level < 0) return input(input_press_outside);
    input(input_press_inside);
    if (send_to_view(event, point) || levels_[level]->edge_at(point)) return;
    aiming_ = false;
    hover_over(level, point);
    NSMenuItem* item = levels_[level]->item_at(point);
    if (can_highlight(item) && [item hasSubmenu]) open_submenu(item);
}

tracking_input_t menu_run_t::release_input(point_t point) const {
    const bool meant = armed_ || moved_ || now() - opened_ > hold_limit;
    const int level = level_at(point);
    if (!meant) return input_release_stay;
    if (level < 0) return input_release_outside;
    NSMenuItem* item = levels_[level]->item_at(point);
    return can_pick(item) && ![item view] ? input_release_pick : input_release_stay;
}

void menu_run_t::released(NSEvent* event, point_t point) {
    // An event tap may have kept the press for itself.
    if (!(buttons_ & button_of(event))) return;
    buttons_ &= ~button_of(event);
    button_down_ = false;
    point_to(point);
    send_to_view(event, point);
    if ([session_ isEnding]) return;  // by the view
    input(release_input(point));
    armed_ = false;
}

void menu_run_t::scrolled(point_t point, double lines) {
    const int level = level_at(point);
    if (level < 0 || lines == 0) return;
    const int pixels = static_cast<int>(-lines * wheel_rows * style_.look.row_height);
    if (!levels_[level]->scroll_by(pixels)) return;
    point_to(point);
    aiming_ = false;
    if (!levels_[level]->edge_at(point)) hover_over(level, point);
}

void menu_run_t::scroll_on() {
    scroll_timer_.stop();
    if (state_ != state_scrolling || scroll_level_ >= static_cast<int>(levels_.size())) return;
    menu_level_t& level = *levels_[scroll_level_];
    // The deeper in the strip and the longer it lasts, the faster.
    const area_t& panel = level.panel();
    const int depth = scroll_direction_ > 0
                          ? pointer_.y - (panel.bottom() - style_.look.arrow_height)
                          : panel.top + style_.look.arrow_height - pointer_.y;
    const double slowest = style_.look.row_height * 0.25;
    const double deeper = 1 + 4.0 * depth / style_.look.arrow_height;
    const double longer = std::min(20.0, 1 + 2 * (now() - scroll_started_));
    const int pixels = static_cast<int>(slowest * deeper * longer);
    const bool goes_on = level.scroll_by(scroll_direction_ * pixels);
    [session_ highlightItem:nil inMenu:level.menu()];
    if (goes_on && level.edge_at(pointer_)) {
        scroll_timer_.start(scroll_interval);
    } else {
        hover(pointer_);
    }
}

// Item views get the events over them, as their window would send them.
bool menu_run_t::send_to_view(NSEvent* event, point_t point) {
    const int level = level_at(point);
    NSMenuItem* item = level < 0 ? nil : levels_[level]->item_at(point);
    if (![item view] || [[item view] window] != levels_[level]->window()) return false;
    NSWindow* window = levels_[level]->window();
    const NSPoint at = [window convertScreenToBase:screen_point(point)];
    NSView* content = [window contentView];
    NSView* hit = [content hitTest:[[content superview] convertPoint:at fromView:nil]];
    if (!hit || hit == content || [hit isKindOfClass:[MenuItemHolder class]]) return true;
    NSEvent* sent = [NSEvent mouseEventWithType:[event type]
                                       location:at
                                  modifierFlags:[event modifierFlags]
                                      timestamp:[event timestamp]
                                   windowNumber:[window windowNumber]
                                        context:[event context]
                                    eventNumber:[event eventNumber]
                                     clickCount:[event clickCount]
                                       pressure:[event pressure]];
    send_mouse_event(hit, sent);
    return true;
}
