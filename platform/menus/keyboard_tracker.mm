#include "menus/keyboard_tracker.h"

#include <host/modifier_keys.h>

#include <algorithm>

#include "menus/menu_items.h"
#include "look/menu_text.h"
#include "x11/screens.h"

namespace {

const double typing_pause = 1;  // after which typing starts anew
const unichar escape_character = 0x1B;

bool is_key_event(NSEvent* event) {
    const NSEventType type = [event type];
    return type == NSKeyDown || type == NSKeyUp || type == NSFlagsChanged;
}

unichar mirrored_arrow(unichar character) {
    if (character == NSLeftArrowFunctionKey) return NSRightArrowFunctionKey;
    return character == NSRightArrowFunctionKey ? NSLeftArrowFunctionKey : character;
}

const std::vector<MenuRow>& rows_of(const MenuLevel& level) { return level.layout().rows(); }

// Whether a row beyond this one, in direction `step`, can be highlighted.
bool is_outermost(const std::vector<MenuRow>& rows, int row, int step) {
    const int count = static_cast<int>(rows.size());
    for (row += step; row >= 0 && row < count; row += step) {
        if (can_highlight(rows[row].item)) return false;
    }
    return true;
}

// Rows at the ends that cannot be highlighted come into sight with the row next to them.
void reveal_with_ends(MenuLevel& level, int row) {
    const std::vector<MenuRow>& rows = rows_of(level);
    if (is_outermost(rows, row, -1)) level.reveal(0);
    if (is_outermost(rows, row, 1)) level.reveal(static_cast<int>(rows.size()) - 1);
    level.reveal(row);
}

// The character that the text repeats; empty for other texts.
std::string repeated_character(const std::string& text) {
    if (text.empty()) return "";
    const std::string first = text.substr(0, g_utf8_skip[static_cast<unsigned char>(text[0])]);
    for (size_t at = 0; at < text.size(); at += first.size()) {
        if (text.compare(at, first.size(), first) != 0) return "";
    }
    return first;
}

bool begins_with(NSMenuItem* item, const std::string& wanted) {
    return folded(visible_title([item title])).rfind(wanted, 0) == 0;
}

}  // namespace

void KeyboardTracker::handle(NSEvent* event) {
    follow_modifiers(event);
    if ([event type] == NSKeyDown) press(event);
}

void KeyboardTracker::ask_modifiers() {
    levels_.set_modifiers(current_modifier_flags() & alternate_modifiers);
}

// GNUstep's flags miss some keys that stand for Option and Command, so they only say when to ask
// the server. The flags of pointer events show keys that were pressed while another program had the
// keyboard.
void KeyboardTracker::follow_modifiers(NSEvent* event) {
    const NSUInteger flags = [event modifierFlags] & alternate_modifiers;
    if (is_key_event(event) || flags != flags_) ask_modifiers();
    flags_ = flags;
}

// The level that the user is in: the one that keys have led to since the pointer moved; else the
// level that has the pointer over any of its parts; else the deepest level that is shown.
size_t KeyboardTracker::focus_level() const {
    size_t shown = levels_.size() - 1;
    while (shown > 0 && !levels_[shown].is_shown()) shown--;
    if (level_ >= 0) return std::min<size_t>(level_, shown);
    const int under_pointer = levels_.level_at(pointer_.place());
    return under_pointer >= 0 ? under_pointer : shown;
}

// The keys lead from here on, and a strip under the pointer stops scrolling.
void KeyboardTracker::take_focus() {
    pointer_.yield_to_keys();
    level_ = static_cast<int>(focus_level());
}

void KeyboardTracker::press(NSEvent* event) {
    NSString* characters = [event characters];
    if (![characters length] || levels_.empty()) return;
    take_focus();
    const unichar first = [characters characterAtIndex:0];
    if (first == escape_character) return escape();
    escaped_ = false;
    if (press_command(first)) return typed_.clear();
    if ([characters isEqualToString:@" "] && !is_typing()) return choose();
    if ([event modifierFlags] & (NSControlKeyMask | NSCommandKeyMask)) return;
    type(characters);
}

// False for a key that types its character.
bool KeyboardTracker::press_command(unichar character) {
    if (levels_.style().look.mirrored) character = mirrored_arrow(character);
    const MenuLevel& level = levels_[focus_level()];
    const int last = static_cast<int>(rows_of(level).size()) - 1;
    switch (character) {
        case NSDownArrowFunctionKey:
            return move_highlight(1, true), true;
        case NSUpArrowFunctionKey:
            return move_highlight(-1, true), true;
        case NSPageDownFunctionKey:
            return move_highlight(level.rows_per_page(), false), true;
        case NSPageUpFunctionKey:
            return move_highlight(-level.rows_per_page(), false), true;
        case NSHomeFunctionKey:
            return move_to(0, 1, false), true;
        case NSEndFunctionKey:
            return move_to(last, -1, false), true;
        case NSRightArrowFunctionKey:
            return enter_submenu(), true;
        case NSLeftArrowFunctionKey:
            return leave_submenu(), true;
        case NSCarriageReturnCharacter:
        case NSNewlineCharacter:
        case NSEnterCharacter:
            return choose(), true;
        default:
            return false;
    }
}

void KeyboardTracker::move_highlight(int step, bool wraps) {
    const size_t index = focus_level();
    const MenuLayout& layout = levels_[index].layout();
    const int row = layout.row_of(levels_.highlighted_item(index));
    const int count = static_cast<int>(layout.rows().size());
    const int direction = step > 0 ? 1 : -1;
    if (row < 0) return move_to(step > 0 ? 0 : count - 1, direction, false);
    const int target = row + step;
    const bool beyond = target < 0 || target >= count;
    if (beyond && !wraps) return move_to(std::clamp(target, 0, count - 1), -direction, false);
    move_to(target, direction, wraps);
}

// Highlights the first row from `row` on, in direction `step`, that can be highlighted. Without one
// the search goes back from `row`, unless it wraps around the ends.
void KeyboardTracker::move_to(int row, int step, bool wraps) {
    const size_t index = focus_level();
    MenuLevel& level = levels_[index];
    const int count = static_cast<int>(rows_of(level).size());
    if (!wraps && is_outermost(rows_of(level), row - step, step)) step = -step;
    for (int tries = 0; tries < count; tries++, row += step) {
        if (wraps) row = (row + count) % count;
        if (row < 0 || row >= count) return;
        NSMenuItem* item = rows_of(level)[row].item;
        if (!can_highlight(item)) continue;
        if (index + 1 < levels_.size() && item != levels_.parent_item(index + 1)) {
            [levels_.session() closeLevelsBelowMenu:level.menu()];
        }
        highlight(item, level);
        reveal_with_ends(level, row);
        return;
    }
}

void KeyboardTracker::enter_submenu() {
    const size_t index = focus_level();
    NSMenuItem* item = levels_.highlighted_item(index);
    if (!item) return move_highlight(1, true);
    if (![item hasSubmenu]) return;
    [levels_.session() openSubmenuOfItem:item];
    levels_.synchronize();
    if (index + 1 >= levels_.size() || !levels_[index + 1].is_shown()) return;
    level_ = static_cast<int>(index) + 1;
    const std::vector<MenuRow>& rows = rows_of(levels_[index + 1]);
    const auto first = std::find_if(rows.begin(), rows.end(),
                                    [](const MenuRow& row) { return can_highlight(row.item); });
    if (first == rows.end()) return;
    highlight(first->item, levels_[index + 1]);
}

// A program that watches the pointer learns from a move to its own place that the highlight rests
// on another row from now on: previews follow it.
void KeyboardTracker::highlight(NSMenuItem* item, MenuLevel& level) {
    [levels_.session() highlightItem:item inMenu:level.menu()];
    NSWindow* window = level.window();
    const MenuPoint place = pointer_.place();
    const NSPoint at = [window convertScreenToBase:screen_point(place)];
    // Only a move that the pointer tracker takes for none leaves the highlight alone.
    const MenuPoint back = server_point([window convertBaseToScreen:at]);
    if (back.x != place.x || back.y != place.y) return;
    NSEvent* move = [NSEvent mouseEventWithType:NSMouseMoved
                                       location:at
                                  modifierFlags:flags_
                                      timestamp:[[NSProcessInfo processInfo] systemUptime]
                                   windowNumber:[window windowNumber]
                                        context:nil
                                    eventNumber:0
                                     clickCount:0
                                       pressure:0];
    if (move) [NSApp postEvent:move atStart:NO];
}

void KeyboardTracker::leave_submenu() {
    const size_t index = focus_level();
    if (index + 1 < levels_.size()) {
        [levels_.session() closeLevelsBelowMenu:levels_[index].menu()];
    } else if (index > 0) {
        level_ = static_cast<int>(index) - 1;
        [levels_.session() closeLevelsBelowMenu:levels_[index - 1].menu()];
    }
}

// Closes the menu, or one level where the host wants that; a second Escape then closes the rest.
void KeyboardTracker::escape() {
    if (escaped_ || levels_.size() < 2 || !escape_closes_level()) return pointer_.cancel();
    escaped_ = true;
    const size_t deepest = levels_.size() - 1;
    level_ = static_cast<int>(deepest) - 1;
    [levels_.session() closeLevelsBelowMenu:levels_[deepest - 1].menu()];
}

void KeyboardTracker::choose() {
    NSMenuItem* item = levels_.highlighted_item(focus_level());
    if (can_pick(item)) {
        [levels_.session() pickItem:item];
    } else if ([item hasSubmenu]) {
        enter_submenu();
    }
}

bool KeyboardTracker::is_typing() const {
    return !typed_.empty() && seconds_now() - typed_at_ <= typing_pause;
}

void KeyboardTracker::type(NSString* characters) {
    const unichar first = [characters characterAtIndex:0];
    if (first < 0x20 || first == 0x7F || (first >= 0xF700 && first <= 0xF8FF)) return;
    if (!is_typing()) typed_.clear();
    typed_at_ = seconds_now();
    typed_ += folded([characters UTF8String] ?: "");
    const size_t index = focus_level();
    const int row = std::max(0, levels_[index].layout().row_of(levels_.highlighted_item(index)));
    const std::string repeated = repeated_character(typed_);
    const bool is_one = typed_ == repeated;
    if (!is_one && find(typed_, row)) return;
    if (repeated.empty()) return;
    // Each further press of a letter leads to the next of its rows.
    const bool is_there = begins_with(levels_.highlighted_item(index), repeated);
    find(repeated, is_there ? row + 1 : row);
}

// Highlights the first row from `from` on, around the end, whose title begins with the text.
bool KeyboardTracker::find(const std::string& wanted, int from) {
    const std::vector<MenuRow>& rows = rows_of(levels_[focus_level()]);
    const int count = static_cast<int>(rows.size());
    for (int i = 0; i < count; i++) {
        const int row = (from + i) % count;
        if (!can_highlight(rows[row].item) || !begins_with(rows[row].item, wanted)) continue;
        move_to(row, 1, false);
        return true;
    }
    return false;
}
