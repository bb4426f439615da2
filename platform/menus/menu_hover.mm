#include "menus/menu_hover.h"

#include "menus/menu_items.h"

namespace {

const double hover_delay = 0.2;  // until a submenu opens
const double aim_limit = 0.35;   // for a move across other rows to an open submenu

}  // namespace

void MenuHover::set_item(NSMenuItem* item) {
    [item retain];
    [item_ release];
    item_ = item;
}

void MenuHover::rest_on(NSMenuItem* item) {
    set_item(item);
    timer_.start(hover_delay);
}

void MenuHover::stop() {
    is_aiming_ = false;
    timer_.stop();
}

void MenuHover::open_submenu(NSMenuItem* item) {
    timer_.stop();
    [levels_.session() openSubmenuOfItem:item];
}

void MenuHover::move_to(int level, MenuPoint point) {
    if (!aims(level, point)) enter(level, point);
}

void MenuHover::leave() {
    if (levels_.empty()) return;
    [levels_.session() highlightItem:nil inMenu:levels_.all().back()->menu()];
    timer_.stop();
    set_item(nil);
}

bool MenuHover::aims(int level, MenuPoint point) {
    const bool child_open = level + 1 < static_cast<int>(levels_.size());
    const bool aims = child_open && levels_[level + 1].is_shown() &&
                      levels_[level].item_at(point) != levels_.parent_item(level + 1) &&
                      is_on_the_way(aim_from_, point, levels_[level + 1].panel());
    if (aims && !is_aiming_) timer_.start(aim_limit);
    is_aiming_ = aims;
    return aims;
}

void MenuHover::enter(int level, MenuPoint point) {
    MenuSession* session = levels_.session();
    aim_from_ = point;
    for (int i = 0; i < level; i++) {
        [session highlightItem:levels_.parent_item(i + 1) inMenu:levels_[i].menu()];
    }
    NSMenuItem* item = levels_[level].item_at(point);
    const int deepest = static_cast<int>(levels_.size()) - 1;
    // Where no row can be highlighted, the item of an open submenu stays highlighted.
    if (can_highlight(item) || level == deepest) {
        [session highlightItem:item inMenu:levels_[level].menu()];
    }
    if (level < deepest) [session highlightItem:nil inMenu:levels_[deepest].menu()];
    if (item == item_) return;
    set_item(item);
    if (can_highlight(item)) {
        timer_.start(hover_delay);
    } else {
        timer_.stop();
    }
}

// Opens the submenu of the row, or closes the submenu of another row.
void MenuHover::rest(MenuPoint point) {
    MenuSession* session = levels_.session();
    timer_.stop();
    if (is_aiming_) {
        is_aiming_ = false;
        aim_from_ = point;
        const int level = levels_.level_at(point);
        if (level >= 0) enter(level, point);
        if (!timer_.is_running()) timer_.start(hover_delay);
        return;
    }
    if (!can_highlight(item_) || [session highlightedItemOfMenu:[item_ menu]] != item_) return;
    if ([item_ hasSubmenu]) {
        [session openSubmenuOfItem:item_];
    } else {
        [session closeLevelsBelowMenu:[item_ menu]];
    }
}
