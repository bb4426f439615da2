// Questions about a menu's items, and bringing them up to date before the menu shows.
#pragma once

#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>

// Shift, Control, Option and Command: the keys that choose between alternates.
const NSUInteger alternate_modifiers =
    NSShiftKeyMask | NSControlKeyMask | NSAlternateKeyMask | NSCommandKeyMask;

// See +[MenuSession visibleItemsOfMenu:withModifiers:]. Appends to `shown`.
void append_visible_items(NSArray* items, NSUInteger modifiers, NSMutableArray* shown);

// Whether the pointer and the keys can rest on the item.
bool can_highlight(NSMenuItem* item);

// Whether picking the item ends the tracking: it is enabled, has an action of its own, and does not
// only head its submenu.
bool can_pick(NSMenuItem* item);
// See +[NSMenu setHeadingQuestion:].
void set_heading_question(BOOL (*question)(NSMenuItem*));

// See +[NSMenu setMarkQuestion:].
void set_mark_question(MenuMark (*question)(NSMenuItem*));
MenuMark mark_of(NSMenuItem* item);

// See +[NSMenu setEscapeQuestion:].
void set_escape_question(BOOL (*question)());
bool escape_closes_level();

// Asks the delegate for the menu's items, then enables them by their targets where the menu does
// that itself. Submenus are left alone: each is asked when it opens.
void update_menu(NSMenu* menu);

// Enables and disables the items by their targets, if the menu does that itself.
void validate_items(NSMenu* menu);

// Sends the item's action to its target, or along the responders.
void send_action(NSMenuItem* item);
