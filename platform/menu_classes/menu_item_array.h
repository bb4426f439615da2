// The array of a menu's items. Asked for an item that was packed, it makes the object, and keeps
// it. Main thread.
#pragma once

#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>

#include <vector>

class PackedItems;

@interface MenuItemArray : NSMutableArray {
  @private
    std::vector<uintptr_t>* _places;  // objects, and packed items with the lowest bit set
    PackedItems* _packed;
    NSUInteger _changes;
    BOOL _isLeft;
}
// The item with this submenu; nil when there is none.
- (NSMenuItem*)itemWithSubmenu:(NSMenu*)submenu;
// Grows whenever the menu gets other items.
- (NSUInteger)changes;
// The items have no menu from now on.
- (void)leaveMenu;
@end

// These serve any array of items.
void insert_item(NSMutableArray* items, NSMenuItem* item, NSUInteger index);
NSUInteger count_of_items(NSArray* items);
NSMenuItem* item_at(NSArray* items, NSUInteger index);
// Packs an item that nobody else holds, if it can be packed.
void pack_item(NSMutableArray* items, NSUInteger index);
void leave_menu(NSMutableArray* items);
// The item; if it is packed, an object that stands for it until the next call.
NSMenuItem* glance_at_item(NSArray* items, NSUInteger index);
// Whether the item is packed: then it is an alternate without a key equivalent, for these modifier
// keys.
BOOL is_packed_item(NSArray* items, NSUInteger index, NSUInteger* modifiers);
// Whether the item is packed; then *fields has its fields.
BOOL read_packed_item(NSArray* items, NSUInteger index, AlternateFields* fields);
NSMenuItem* item_with_submenu(NSArray* items, NSMenu* submenu);
// An array that never changes has none.
NSUInteger changes_of_items(NSArray* items);
