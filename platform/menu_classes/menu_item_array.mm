#include "menu_classes/menu_item_array.h"

#include <algorithm>

#include "menu_classes/packed_items.h"

namespace {

constexpr uintptr_t packed_mark = 1;

bool is_packed(uintptr_t place) { return place & packed_mark; }

NSMenuItem* object_in(uintptr_t place) { return reinterpret_cast<NSMenuItem*>(place); }

const PackedItems::Word* packed_in(uintptr_t place) {
    return reinterpret_cast<const PackedItems::Word*>(place & ~packed_mark);
}

uintptr_t place_for(id item) { return reinterpret_cast<uintptr_t>(item); }

}  // namespace

@implementation MenuItemArray

- (instancetype)init {
    if (!(self = [super init])) return nil;
    _places = new std::vector<uintptr_t>;
    _packed = new PackedItems;
    return self;
}

- (void)dealloc {
    for (const uintptr_t place : *_places) {
        if (is_packed(place)) {
            _packed->drop(packed_in(place));
        } else {
            [object_in(place) release];
        }
    }
    delete _places;
    delete _packed;
    [super dealloc];
}

// Functions where a large menu asks for each of its items; a message takes longer than the answer.
static uintptr_t& place_at(MenuItemArray* self, NSUInteger index) {
    const std::vector<uintptr_t>& places = *self->_places;
    if (index >= places.size()) {
        [NSException raise:NSRangeException
                    format:@"no item %lu of %zu", static_cast<unsigned long>(index), places.size()];
    }
    return (*self->_places)[index];
}

static void pack(MenuItemArray* self, NSUInteger index) {
    uintptr_t& place = place_at(self, index);
    if (is_packed(place)) return;
    const PackedItems::Word* packed = self->_packed->pack(object_in(place));
    if (packed) place = reinterpret_cast<uintptr_t>(packed) | packed_mark;
}

static NSMenuItem* glance_at(MenuItemArray* self, NSUInteger index) {
    const uintptr_t place = place_at(self, index);
    return is_packed(place) ? self->_packed->stand_in(packed_in(place)) : object_in(place);
}

static BOOL is_packed_at(MenuItemArray* self, NSUInteger index, NSUInteger* modifiers) {
    const uintptr_t place = place_at(self, index);
    if (!is_packed(place)) return NO;
    *modifiers = self->_packed->modifiers(packed_in(place));
    return YES;
}

static BOOL read_packed_at(MenuItemArray* self, NSUInteger index, AlternateFields* fields) {
    const uintptr_t place = place_at(self, index);
    if (!is_packed(place)) return NO;
    *fields = self->_packed->fields(packed_in(place));
    return YES;
}

static NSMenuItem* object_at(MenuItemArray* self, NSUInteger index) {
    uintptr_t& place = place_at(self, index);
    if (is_packed(place)) {
        place = place_for(self->_packed->unpack(packed_in(place)));
        if (self->_isLeft) [object_in(place) setMenu:nil];
    }
    return object_in(place);
}

static void insert(MenuItemArray* self, id item, NSUInteger index) {
    if (!item) [NSException raise:NSInvalidArgumentException format:@"no item to insert"];
    std::vector<uintptr_t>& places = *self->_places;
    if (index > places.size()) place_at(self, index);
    self->_changes++;
    const uintptr_t place = place_for([item retain]);
    if (index == places.size()) return places.push_back(place);  // as nearly always
    places.insert(places.begin() + static_cast<ptrdiff_t>(index), place);
}

- (NSUInteger)count {
    return _places->size();
}

- (id)objectAtIndex:(NSUInteger)index {
    return object_at(self, index);
}

- (void)insertObject:(id)item atIndex:(NSUInteger)index {
    insert(self, item, index);
}

- (void)addObject:(id)item {
    [self insertObject:item atIndex:_places->size()];
}

- (void)removeObjectAtIndex:(NSUInteger)index {
    NSMenuItem* const item = [self objectAtIndex:index];
    _places->erase(_places->begin() + static_cast<ptrdiff_t>(index));
    _changes++;
    [item release];  // NOLINT(clang-analyzer-osx.cocoa.RetainCount): the array had it
}

- (void)removeLastObject {
    [self removeObjectAtIndex:_places->size() - 1];
}

- (void)replaceObjectAtIndex:(NSUInteger)index withObject:(id)item {
    if (!item) [NSException raise:NSInvalidArgumentException format:@"no item to insert"];
    NSMenuItem* const replaced = [self objectAtIndex:index];
    place_at(self, index) = place_for([item retain]);
    _changes++;
    [replaced release];  // NOLINT(clang-analyzer-osx.cocoa.RetainCount): the array had it
}

// An item that somebody has is not packed.
- (NSUInteger)indexOfObjectIdenticalTo:(id)item {
    const auto found = std::find(_places->begin(), _places->end(), place_for(item));
    return found == _places->end() ? NSNotFound : static_cast<NSUInteger>(found - _places->begin());
}

// A packed item's submenu is packed, too.
- (NSMenuItem*)itemWithSubmenu:(NSMenu*)submenu {
    for (const uintptr_t place : *_places) {
        if (!is_packed(place) && [object_in(place) submenu] == submenu) return object_in(place);
    }
    return nil;
}

- (NSUInteger)changes {
    return _changes;
}

- (void)leaveMenu {
    _isLeft = YES;
    for (const uintptr_t place : *_places) {
        if (!is_packed(place)) [object_in(place) setMenu:nil];
    }
}

static BOOL is_item_array(NSArray* items) {
    static const Class ours = [MenuItemArray class];
    return object_getClass(items) == ours;
}

void insert_item(NSMutableArray* items, NSMenuItem* item, NSUInteger index) {
    if (is_item_array(items)) return insert(static_cast<MenuItemArray*>(items), item, index);
    [items insertObject:item atIndex:index];
}

NSUInteger count_of_items(NSArray* items) {
    return is_item_array(items) ? static_cast<MenuItemArray*>(items)->_places->size()
                                : [items count];
}

NSMenuItem* item_at(NSArray* items, NSUInteger index) {
    if (is_item_array(items)) return object_at(static_cast<MenuItemArray*>(items), index);
    return [items objectAtIndex:index];
}

void pack_item(NSMutableArray* items, NSUInteger index) {
    if (is_item_array(items)) pack(static_cast<MenuItemArray*>(items), index);
}

void leave_menu(NSMutableArray* items) {
    if (is_item_array(items)) return [static_cast<MenuItemArray*>(items) leaveMenu];
    for (NSMenuItem* item in items) [item setMenu:nil];
}

NSMenuItem* glance_at_item(NSArray* items, NSUInteger index) {
    if (is_item_array(items)) return glance_at(static_cast<MenuItemArray*>(items), index);
    return [items objectAtIndex:index];
}

BOOL is_packed_item(NSArray* items, NSUInteger index, NSUInteger* modifiers) {
    if (!is_item_array(items)) return NO;
    return is_packed_at(static_cast<MenuItemArray*>(items), index, modifiers);
}

BOOL read_packed_item(NSArray* items, NSUInteger index, AlternateFields* fields) {
    if (!is_item_array(items)) return NO;
    return read_packed_at(static_cast<MenuItemArray*>(items), index, fields);
}

@end

NSMenuItem* item_with_submenu(NSArray* items, NSMenu* submenu) {
    if (is_item_array(items)) {
        return [static_cast<MenuItemArray*>(items) itemWithSubmenu:submenu];
    }
    for (NSMenuItem* item in items) {
        if ([item submenu] == submenu) return item;
    }
    return nil;
}

NSUInteger changes_of_items(NSArray* items) {
    return is_item_array(items) ? [static_cast<MenuItemArray*>(items) changes] : 0;
}
