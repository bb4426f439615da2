// Keyboard: moving through rows and levels, choosing, typing the start of a title.
#include <algorithm>

#include "look/menu_text.h"
#include "menus/menu_items.h"
#include "menus/menu_run.h"

namespace {

const double typing_pause = 1;  // after which typing starts anew

double now() { return [NSDate timeIntervalSinceReferenceDate]; }

}  // namespace

// The level that the user is in: where keys have led since the pointer moved, else the level under
// the pointer, whatever of it the pointer is on, else the deepest one that is shown.
size_t menu_run_t::focus_level() const {
    size_t shown = levels_.size() - 1;
    while (shown > 0 && !levels_[shown]->is_shown()) shown--;
    if (key_level_ >= 0) return std::min<size_t>(key_level_, shown);
    const int under_pointer = level_at(pointer_);
    return under_pointer >= 0 ? under_pointer : shown;
}

// From here on it is the keys that lead, and a strip under the pointer scrolls no further.
void menu_run_t::take_focus() {
    aiming_ = false;
    hover_timer_.stop();
    input(button_down_ ? input_leave_edge_pressed : input_leave_edge_free);
    key_level_ = static_cast<int>(focus_level());
}

void menu_run_t::key_pressed(NSEvent* event) {
    NSString* characters = [event characters];
    if (![characters length] || levels_.empty()) return;
    take_focus();
    const menu_level_t& level = *levels_[focus_level()];
    const int last = static_cast<int>(level.layout().rows().size()) - 1;
    switch ([characters characterAtIndex:0]) {
        case NSDownArrowFunctionKey:
            return move_highlight(1, true);
        case NSUpArrowFunctionKey:
            return move_highlight(-1, true);
        case NSPageDownFunctionKey:
            return move_highlight(level.rows_per_page(), false);
        case NSPageUpFunctionKey:
            return move_highlight(-level.rows_per_page(), false);
        case NSHomeFunctionKey:
            return move_to(0, 1, false);
        case NSEndFunctionKey:
            return move_to(last, -1, false);
        case NSRightArrowFunctionKey:
            return enter_submenu();
        case NSLeftArrowFunctionKey:
            return leave_submenu();
        case 0x1B:
            return input(input_cancel);
        case NSCarriageReturnCharacter:
        case NSNewlineCharacter:
        case NSEnterCharacter:
            return choose();
        default:
            break;
    }
    const bool goes_on = !typed_.empty() && now() - typed_at_ <= typing_pause;
    if ([characters isEqualToString:@" "] && !goes_on) return choose();
    if ([event modifierFlags] & (NSControlKeyMask | NSCommandKeyMask)) return;
    type(characters);
}

void menu_run_t::move_highlight(int step, bool wraps) {
    const menu_level_t& level = *levels_[focus_level()];
    const int row = level.layout().row_of([session_ highlightedItemOfMenu:level.menu()]);
    const int count = static_cast<int>(level.layout().rows().size());
    const int direction = step > 0 ? 1 : -1;
    if (row < 0) return move_to(step > 0 ? 0 : count - 1, direction, false);
    const int target = row + step;
    const bool beyond = target < 0 || target >= count;
    if (beyond && !wraps) return move_to(std::clamp(target, 0, count - 1), -direction, false);
    move_to(target, direction, wraps);
}

// Highlights the first row from `row` on, in direction `step`, that can be highlighted.
void menu_run_t::move_to(int row, int step, bool wraps) {
    const size_t index = focus_level();
    menu_level_t& level = *levels_[index];
    const std::vector<menu_row_t>& rows = level.layout().rows();
    const int count = static_cast<int>(rows.size());
    for (int tries = 0; tries < count; tries++, row += step) {
        if (wraps) row = (row + count) % count;
        if (row < 0 || row >= count) return;
        NSMenuItem* item = rows[row].item;
        if (!can_highlight(item)) continue;
        if (index + 1 < levels_.size() && item != parent_item(index + 1)) {
            [session_ closeLevelsBelowMenu:level.menu()];
        }
        [session_ highlightItem:item inMenu:level.menu()];
        level.reveal(row);
        return;
    }
}

void menu_run_t::enter_submenu() {
    const size_t index = focus_level();
    NSMenuItem* item = [session_ highlightedItemOfMenu:levels_[index]->menu()];
    if (!item) return move_highlight(1, true);
    if (![item hasSubmenu]) return;
    [session_ openSubmenuOfItem:item];
    synchronize();
    if (index + 1 >= levels_.size() || !levels_[index + 1]->is_shown()) return;
    key_level_ = static_cast<int>(index) + 1;
    const std::vector<menu_row_t>& rows = levels_[index + 1]->layout().rows();
    const auto first = std::find_if(rows.begin(), rows.end(),
                                    [](const menu_row_t& row) { return can_highlight(row.item); });
    if (first == rows.end()) return;
    [session_ highlightItem:first->item inMenu:levels_[index + 1]->menu()];
}

void menu_run_t::leave_submenu() {
    const size_t index = focus_level();
    if (index + 1 < levels_.size()) {
        [session_ closeLevelsBelowMenu:levels_[index]->menu()];
    } else if (index > 0) {
        key_level_ = static_cast<int>(index) - 1;
        [session_ closeLevelsBelowMenu:levels_[index - 1]->menu()];
    }
}

void menu_run_t::choose() {
    NSMenuItem* item = [session_ highlightedItemOfMenu:levels_[focus_level()]->menu()];
    if (can_pick(item)) {
        [session_ pickItem:item];
    } else if ([item hasSubmenu]) {
        enter_submenu();
    }
}

void menu_run_t::type(NSString* characters) {
    const unichar first = [characters characterAtIndex:0];
    if (first < 0x20 || first == 0x7F || (first >= 0xF700 && first <= 0xF8FF)) return;
    if (now() - typed_at_ > typing_pause) typed_.clear();
    typed_at_ = now();
    typed_ += [characters UTF8String] ?: "";
    const std::string wanted = folded(typed_);
    const std::vector<menu_row_t>& rows = levels_[focus_level()]->layout().rows();
    for (size_t row = 0; row < rows.size(); row++) {
        if (!can_highlight(rows[row].item)) continue;
        if (folded(visible_title([rows[row].item title])).rfind(wanted, 0) != 0) continue;
        return move_to(static_cast<int>(row), 1, false);
    }
}
