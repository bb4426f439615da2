#include "menus/menu_levels.h"

#include "desktop/icon_theme.h"
#include "look/title_line.h"
#include "menus/menu_presenter.h"
#include "menus/menu_items.h"
#include "x11/menu_windows.h"
#include "x11/screens.h"
#include "coregraphics/image.h"

namespace {

// Whether another item may stand in the row of this one.
bool has_alternate(NSMenuItem* item, NSArray* items) {
    if ([item isAlternate]) return true;
    const NSUInteger next = [items indexOfObjectIdenticalTo:item] + 1;
    return next < [items count] && [static_cast<NSMenuItem*>([items
                                       objectAtIndex:next]) isAlternate];
}

}  // namespace

MenuLevels::MenuLevels(MenuSession* session, NSFont* font)
    : session_([session retain]),
      style_{menu_look(font, server_resources()), windows_are_composed(), &images_} {
    use_icon_theme(style_.look.icon_theme);
    set_display_scale(style_.look.scale);
    set_display_is_dark(is_dark(style_.look));
}

MenuLevels::~MenuLevels() {
    [follower_ release];
    [session_ release];
}

void MenuLevels::menu_changed(NSMenu* menu) {
    for (const auto& level : levels_) {
        if (level->menu() != menu) continue;
        level->mark_changed();
        changed_ = true;
    }
}

void MenuLevels::image_changed(NSImage* image) {
    images_.forget(image);
    for (const auto& level : levels_) level->redraw();
}

void MenuLevels::synchronize() {
    // Following changed rows may change the session again, and a delegate may change it for ever.
    for (int rounds = 0; rounds < 8; rounds++) {
        changed_ = false;
        follow_session();
        bool changed = false;
        for (size_t i = 0; i < levels_.size(); i++) changed = synchronize_rows(i) || changed;
        if (!changed && !changed_) break;
    }
    show_highlights();
    for (const auto& level : levels_) display_menu_window(level->window());
    tell_open_levels_changed();
}

// The deepest highlight has the full accent, because the keys and a pick act there.
void MenuLevels::show_highlights() {
    bool is_trail = false;
    for (size_t i = levels_.size(); i-- > 0;) {
        NSMenuItem* item = highlighted_item(i);
        levels_[i]->set_highlight(item, is_trail);
        is_trail = is_trail || item;
    }
}

bool MenuLevels::needs_synchronizing() const {
    for (const auto& level : levels_) {
        if ([level->window() viewsNeedDisplay]) return true;
    }
    return changed_;
}

NSMenuItem* MenuLevels::take_follower() {
    NSMenuItem* item = [follower_ autorelease];
    follower_ = nil;
    return item;
}

void MenuLevels::follow_session() {
    NSArray* open = [session_ levels];
    size_t same = 0;
    while (same < levels_.size() && same < [open count] &&
           levels_[same]->menu() == [open objectAtIndex:same]) {
        same++;
    }
    while (levels_.size() > same) levels_.pop_back();
    for (size_t i = same; i < [open count]; i++) {
        levels_.push_back(std::make_unique<MenuLevel>([open objectAtIndex:i], style_));
        levels_[i]->refresh(modifiers_);
        show(i);
    }
}

void MenuLevels::show(size_t index) {
    if (index == 0) {
        levels_[0]->show_at_pointer(origin_);
    } else {
        levels_[index]->show_beside(*levels_[index - 1], parent_item(index));
    }
}

// While the user is in a deeper level, the alternate that led there stays, with any keys held.
NSUInteger MenuLevels::modifiers_for(size_t index) const {
    const MenuLevel& level = *levels_[index];
    const NSUInteger shown = level.layout().modifiers();
    if (shown == modifiers_ || index + 1 >= levels_.size()) return modifiers_;
    if (!highlighted_item(index + 1)) return modifiers_;
    const bool stays = has_alternate(parent_item(index + 1), [level.menu() itemArray]);
    return stays ? shown : modifiers_;
}

bool MenuLevels::synchronize_rows(size_t index) {
    MenuLevel& level = *levels_[index];
    const int row = level.layout().row_of(highlighted_item(index));
    const int row_open = level.layout().row_of(parent_item(index + 1));
    if (!level.refresh(modifiers_for(index))) return false;
    if (level.is_shown()) {
        level.resize();
    } else {
        show(index);
    }
    follow_rows(index, row);
    if (row_open >= 0 && level.layout().row_of(parent_item(index + 1)) < 0) {
        [session_ closeLevelsBelowMenu:level.menu()];
    }
    return true;
}

// Moves the highlight of an item whose row has gone to the item that stands there now, if any.
void MenuLevels::follow_rows(size_t index, int row_before) {
    const MenuLevel& level = *levels_[index];
    NSMenuItem* highlighted = highlighted_item(index);
    if (!highlighted || level.layout().row_of(highlighted) >= 0) return;
    NSMenuItem* item = nil;
    if (row_before >= 0 && row_before < static_cast<int>(level.layout().rows().size())) {
        item = level.layout().rows()[row_before].item;
    }
    [session_ highlightItem:item inMenu:level.menu()];
    if (!can_highlight(item)) return;
    [item retain];
    [follower_ release];
    follower_ = item;
}

int MenuLevels::level_at(MenuPoint point) const {
    for (size_t i = levels_.size(); i-- > 0;) {
        if (levels_[i]->contains(point)) return static_cast<int>(i);
    }
    return -1;
}

NSMenuItem* MenuLevels::item_at(MenuPoint point) const {
    const int level = level_at(point);
    return level < 0 ? nil : levels_[level]->item_at(point);
}

NSMenuItem* MenuLevels::highlighted_item(size_t index) const {
    return [session_ highlightedItemOfMenu:levels_[index]->menu()];
}

NSMenuItem* MenuLevels::parent_item(size_t index) const {
    if (index == 0 || index >= levels_.size()) return nil;
    NSMenu* submenu = levels_[index]->menu();
    if (NSMenuItem* item = [session_ itemOfStandIn:submenu]) return item;
    NSMenuItem* highlighted = highlighted_item(index - 1);
    if ([highlighted submenu] == submenu) return highlighted;
    for (const MenuRow& row : levels_[index - 1]->layout().rows()) {
        if ([row.item submenu] == submenu) return row.item;
    }
    return nil;
}

void MenuLevels::hide() {
    for (const auto& level : levels_) level->hide();
}

void MenuLevels::clear() {
    levels_.clear();
    images_.clear();
    TitleLine::forget_glyphs();
    tell_open_levels_changed();
}
