#include "menus/menu_items.h"

#include "menu_classes/menu_item_array.h"

namespace {

BOOL (*heading_question)(NSMenuItem*);
MenuMark (*mark_question)(NSMenuItem*);
BOOL (*escape_question)();

bool only_heads_submenu(NSMenuItem* item) {
    return heading_question && [item hasSubmenu] && heading_question(item);
}

// GNUstep gives an item with a submenu this method of the menu; it is no action of the item's own.
bool is_submenu_action(SEL action) { return sel_isEqual(action, @selector(submenuAction:)); }

// These look at items without making objects of those that are packed.
NSUInteger modifiers_of(NSArray* items, NSUInteger index) {
    NSUInteger modifiers;
    if (is_packed_item(items, index, &modifiers)) return modifiers;
    return [item_at(items, index) keyEquivalentModifierMask];
}

NSUInteger group_end(NSArray* items, NSUInteger first) {
    const NSUInteger count = count_of_items(items);
    NSMenuItem* primary = item_at(items, first);
    NSUInteger end = first + 1;
    if ([primary isSeparatorItem]) return end;
    NSString* const key = [primary keyEquivalent];
    const bool has_key = [key length] != 0;
    NSUInteger modifiers;
    for (; end < count; end++) {
        if (is_packed_item(items, end, &modifiers)) {
            if (has_key) break;
            continue;
        }
        NSMenuItem* item = item_at(items, end);
        if (![item isAlternate] || ![[item keyEquivalent] isEqualToString:key]) break;
    }
    return end;
}

NSMenuItem* shown_item(NSArray* items, NSUInteger first, NSUInteger end, NSUInteger modifiers) {
    for (NSUInteger i = first + 1; i < end; i++) {
        if ((modifiers_of(items, i) & alternate_modifiers) != modifiers) continue;
        return item_at(items, i);
    }
    return item_at(items, first);
}

// A program without an application object has no responders to look through.
id action_target(NSMenuItem* item) {
    SEL action = [item action];
    if (!action) return nil;
    if (NSApp) return [NSApp targetForAction:action to:[item target] from:item];
    return [[item target] respondsToSelector:action] ? [item target] : nil;
}

bool should_enable(NSMenuItem* item) {
    SEL action = [item action];
    if ([item hasSubmenu] && (!action || is_submenu_action(action))) return true;
    id target = action_target(item);
    if (!target) return false;
    if ([target respondsToSelector:@selector(validateMenuItem:)]) {
        return [target validateMenuItem:item];
    }
    if ([target respondsToSelector:@selector(validateUserInterfaceItem:)]) {
        return [target validateUserInterfaceItem:item];
    }
    return true;
}

// Changing an item makes GNUstep's menu ask its delegate and validate all over again, by its own
// rules: neither must happen here.
void toggle_enabled(NSMenu* menu, NSArray* items) {
    id delegate = [menu delegate];
    [menu setDelegate:nil];
    [menu setMenuChangedMessagesEnabled:NO];
    for (NSMenuItem* item in items) [item setEnabled:![item isEnabled]];
    [menu setMenuChangedMessagesEnabled:YES];
    [menu setDelegate:delegate];
}

void resize_menu(NSMenu* menu, NSInteger count) {
    while ([menu numberOfItems] > count) [menu removeItemAtIndex:[menu numberOfItems] - 1];
    while ([menu numberOfItems] < count)
        [menu addItemWithTitle:@"" action:nullptr keyEquivalent:@""];
}

void update_item_by_item(NSMenu* menu, id delegate) {
    const NSInteger count = [delegate numberOfItemsInMenu:menu];
    if (count < 0) return;
    resize_menu(menu, count);
    if (![delegate respondsToSelector:@selector(menu:updateItem:atIndex:shouldCancel:)]) return;
    for (NSInteger i = 0; i < count && i < [menu numberOfItems]; i++) {
        NSMenuItem* item = static_cast<NSMenuItem*>([menu itemAtIndex:i]);
        if (![delegate menu:menu updateItem:item atIndex:i shouldCancel:NO]) break;
    }
}

}  // namespace

void append_visible_items(NSArray* items, NSUInteger modifiers, NSMutableArray* shown) {
    const NSUInteger count = count_of_items(items);
    for (NSUInteger first = 0; first < count;) {
        const NSUInteger end = group_end(items, first);
        [shown addObject:shown_item(items, first, end, modifiers & alternate_modifiers)];
        first = end;
    }
}

bool can_highlight(NSMenuItem* item) { return item && ![item isSeparatorItem] && [item isEnabled]; }

bool can_pick(NSMenuItem* item) {
    return can_highlight(item) && [item action] && !is_submenu_action([item action]) &&
           !only_heads_submenu(item);
}

void set_heading_question(BOOL (*question)(NSMenuItem*)) { heading_question = question; }

void set_mark_question(MenuMark (*question)(NSMenuItem*)) { mark_question = question; }

MenuMark mark_of(NSMenuItem* item) { return mark_question ? mark_question(item) : menu_mark_none; }

void set_escape_question(BOOL (*question)()) { escape_question = question; }

bool escape_closes_level() { return escape_question && escape_question(); }

void update_menu(NSMenu* menu) {
    id delegate = [menu delegate];
    if ([delegate respondsToSelector:@selector(menuNeedsUpdate:)]) {
        [delegate menuNeedsUpdate:menu];
    } else if ([delegate respondsToSelector:@selector(numberOfItemsInMenu:)]) {
        update_item_by_item(menu, delegate);
    }
    validate_items(menu);
}

void validate_items(NSMenu* menu) {
    if (![menu autoenablesItems]) return;
    NSMutableArray* wrong = [NSMutableArray array];
    for (NSMenuItem* item in [NSArray arrayWithArray:[menu itemArray]]) {
        if ([item isSeparatorItem]) continue;
        if (should_enable(item) != [item isEnabled]) [wrong addObject:item];
    }
    if ([wrong count]) toggle_enabled(menu, wrong);
}

void send_action(NSMenuItem* item) {
    if (NSApp) {
        [NSApp sendAction:[item action] to:[item target] from:item];
    } else {
        [action_target(item) performSelector:[item action] withObject:item];
    }
}
