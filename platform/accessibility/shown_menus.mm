#include "accessibility/shown_menus.h"

#include <algorithm>

#include "accessibility/panel_rows.h"
#include "appkit/row_tips.h"
#include "menus/menu_items.h"
#include "menus/menu_run.h"
#include "panels/copied_text.h"
#include "panels/shown_panel.h"

namespace {

// The panel that waits for the user or, while no menu is open either, the one that tells something.
WidgetPanel* read_panel() {
    WidgetPanel* const panel = shown_panel();
    return panel || MenuRun::current() ? panel : telling_panel();
}

// The panel, if this level is one.
WidgetPanel* panel_at(size_t level) { return level == 0 ? read_panel() : nil; }

// A level's place among those of the menu's run.
size_t place_in_run(size_t level) { return level - (read_panel() ? 1 : 0); }

MenuLevel& shown(size_t level) { return *MenuRun::current()->levels()[place_in_run(level)]; }

const MenuRow& shown_row(size_t level, int row) { return shown(level).layout().rows()[row]; }

NSMenuItem* item_at(size_t level, int row) { return shown_row(level, row).item; }

MenuSession* session() { return [MenuSession current]; }

std::string text(NSString* string) { return [string UTF8String] ?: ""; }

std::string name_of(NSMenuItem* item) {
    NSString* const title = whole_title(item);
    return text([title length] ? title : [[item attributedTitle] string]);
}

bool is_in_sight(const MenuLevel& level, const MenuRow& row) {
    const int top = row.top - level.scroll();
    return level.is_shown() && top + row.height > 0 && top < level.panel().height;
}

}  // namespace

std::string ShownMenus::application() const {
    return text([[NSProcessInfo processInfo] processName]);
}

size_t ShownMenus::levels() const {
    const MenuRun* const run = MenuRun::current();
    return (read_panel() ? 1 : 0) + (run ? run->levels().size() : 0);
}

OpenLevel ShownMenus::level(size_t level) const {
    if (WidgetPanel* panel = panel_at(level)) return level_of(panel);
    const MenuLevel& open = shown(level);
    OpenLevel answer;
    answer.number = open.number();
    answer.revision = open.layout().revision();
    answer.scroll = open.scroll();
    answer.rows = static_cast<int>(open.layout().rows().size());
    answer.highlighted = open.layout().row_of([session() highlightedItemOfMenu:open.menu()]);
    answer.name = text([open.menu() title]);
    if (const size_t place = place_in_run(level)) {
        NSMenuItem* const parent = MenuRun::current()->parent_item(place);
        answer.parent_row = shown(level - 1).layout().row_of(parent);
    } else if (WidgetPanel* panel = shown_panel()) {
        answer.parent_row = level_of(panel).highlighted;  // the widget that has opened the menu
    }
    return answer;
}

Area ShownMenus::level_area(size_t level) const {
    WidgetPanel* const panel = panel_at(level);
    return panel ? area_of(panel) : shown(level).panel();
}

OpenRow ShownMenus::row(size_t level, int row) const {
    if (WidgetPanel* panel = panel_at(level)) return row_of(panel, row);
    const MenuRow& place = shown_row(level, row);
    NSMenuItem* const item = place.item;
    OpenRow answer;
    answer.is_in_sight = is_in_sight(shown(level), place);
    if (place.kind == separator_row) {
        answer.kind = OpenRow::separator;
        return answer;
    }
    const NSInteger state = [item state];
    answer.kind = state == NSOffState ? OpenRow::item : OpenRow::check_item;
    answer.name = name_of(item);
    answer.is_enabled = [item isEnabled];
    answer.is_checked = state == NSOnState;
    answer.is_mixed = state == NSMixedState;
    answer.has_submenu = [item hasSubmenu];
    answer.can_be_picked = can_pick(item);
    return answer;
}

Area ShownMenus::row_area(size_t level, int row) const {
    WidgetPanel* const panel = panel_at(level);
    return panel ? row_area_of(panel, row) : shown(level).row_area(row);
}

RowPlace ShownMenus::row_place(size_t level, int row) const {
    if (WidgetPanel* panel = panel_at(level)) return row_place_of(panel, row);
    const MenuLayout& layout = shown(level).layout();
    const int count = static_cast<int>(layout.rows().size());
    if (revision_ != layout.revision()) {
        revision_ = layout.revision();
        separators_.clear();
        for (int i = 0; i < count; i++) {
            if (layout.rows()[i].kind == separator_row) separators_.push_back(i);
        }
    }
    const auto before = std::lower_bound(separators_.begin(), separators_.end(), row);
    const int skipped = static_cast<int>(before - separators_.begin());
    return {row + 1 - skipped, count - static_cast<int>(separators_.size())};
}

int ShownMenus::row_at(size_t level, MenuPoint point) const {
    WidgetPanel* const panel = panel_at(level);
    return panel ? ::row_at(panel, point) : shown(level).row_at(point);
}

Area ShownMenus::text_area(size_t level, int row, size_t begin, size_t end) const {
    WidgetPanel* const panel = panel_at(level);
    return panel ? text_area_of(panel, row, begin, end) : Area{};
}

size_t ShownMenus::text_at(size_t level, int row, MenuPoint point) const {
    WidgetPanel* const panel = panel_at(level);
    return panel ? ::text_at(panel, row, point) : 0;
}

bool ShownMenus::write(size_t level, int row, const std::string& text, size_t caret,
                       size_t anchor) {
    WidgetPanel* const panel = panel_at(level);
    return panel && write_row(panel, row, {text, caret, anchor});
}

void ShownMenus::copy(const std::string& text) { copy_text(text); }

std::string ShownMenus::copied() {
    TextEdit plain;  // a field takes no control characters
    plain.insert(copied_text());
    return plain.text;
}

bool ShownMenus::highlight(size_t level, int row) {
    if (WidgetPanel* panel = panel_at(level)) return focus_row(panel, row);
    NSMenuItem* const item = item_at(level, row);
    if (!can_highlight(item)) return false;
    [session() highlightItem:item inMenu:shown(level).menu()];
    shown(level).reveal(row);
    return true;
}

bool ShownMenus::pick(size_t level, int row) {
    if (WidgetPanel* panel = panel_at(level)) return hit_row(panel, row);
    NSMenuItem* const item = item_at(level, row);
    if (!can_pick(item)) return open_submenu(level, row);
    [session() pickItem:item];
    return true;
}

// The submenu of a folder whose disk is slow opens later.
bool ShownMenus::open_submenu(size_t level, int row) {
    if (WidgetPanel* panel = panel_at(level)) return hit_row(panel, row);
    NSMenuItem* const item = item_at(level, row);
    if (![item hasSubmenu] || !can_highlight(item)) return false;
    [session() openSubmenuOfItem:item];
    return true;
}

bool ShownMenus::close_submenu(size_t level, int row) {
    if (level + 1 >= levels() || this->level(level + 1).parent_row != row) return false;
    if (panel_at(level)) return false;
    [session() closeLevelsBelowMenu:shown(level).menu()];
    return true;
}
