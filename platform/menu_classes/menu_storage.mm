// Makes menus light. GNUstep gives each menu two panels, a view and four observers as it is made;
// here they come into being when something first asks for them: the main menu, a popup button, a
// torn-off menu. A menu that is only ever shown as a contextual menu never has them.
#include "menu_classes/menu_storage.h"

#include "menu_classes/menu_changes.h"
#include "menu_classes/menu_item_array.h"
#include "objc/last_class.h"
#include "objc/method_patch.h"

// The item array that all menus without items share, as most submenus are never opened.
@interface NoMenuItems : NSMutableArray
@end

@implementation NoMenuItems

// The only one stays for ever.
- (id)retain {
    return self;
}

- (oneway void)release {
}

- (NSUInteger)count {
    return 0;
}

- (id)objectAtIndex:(NSUInteger)index {
    [NSException raise:NSRangeException format:@"no item %lu", static_cast<unsigned long>(index)];
    return nil;
}

@end

static MenuChangeListener change_listener;

void set_menu_change_listener(MenuChangeListener listener) { change_listener = listener; }

@implementation NSMenu (LightMethods)

- (NSMenu*)initAsPlainObject {
    return [super init];
}

- (void)deallocAsPlainObject {
    [super dealloc];
}

static struct { IMP insert, remove, changed, key_equivalent, close, deallocate; } stock;

static NSMutableArray* no_items() {
    static NSMutableArray* const none = [NoMenuItems new];
    return none;
}

bool is_array_of_no_items(id items) { return items == no_items(); }

- (void)needArrays {
    if (!_notifications) _notifications = [NSMutableArray new];
    if (_items != no_items()) return;
    [_items release];
    _items = [MenuItemArray new];
}

bool is_untouched(NSMenu* self) {
    return self->_items == no_items() && !self->_notifications && !self->_view && !self->_aWindow &&
           !self->_bWindow && !self->_attachedMenu && !self->_popUpButtonCell &&
           !has_menu_font(self);
}

// The main menu is drawn anew when anything on it has changed.
static void tell_main_menu(NSMenu* self) {
    NSMenu* const main = [NSApp mainMenu];
    if (!main) return;
    while (self && self != main) self = self->_superMenu;
    if (self) self->_menu.mainMenuChanged = YES;
}

static void told_of_change(NSMenu* self, NSMenuItem* item) {
    self->_menu.needsSizing = YES;
    tell_main_menu(self);
    if (change_listener) change_listener(self, item);
}

static id light_init(NSMenu* self, SEL, NSString* title) {
    if (!(self = [self initAsPlainObject])) return nil;
    self->_title = [title copy];
    self->_items = no_items();
    self->_menu.changedMessagesEnabled = YES;
    self->_menu.needsSizing = YES;
    self->_menu.autoenable = YES;
    observe_launch();
    return self;
}

// Whoever fills a menu may still work with the items that were added last.
static void pack_early_item(NSMutableArray* items) {
    static const NSUInteger objects_at_end = 500;
    const NSUInteger count = count_of_items(items);
    if (count > objects_at_end) pack_item(items, count - 1 - objects_at_end);
}

static bool is_item(id object) {
    static const Class item_class = [NSMenuItem class];
    static LastClass known;
    return known.fits(object, [&] { return [object isKindOfClass:item_class]; });
}

static void light_insert(NSMenu* self, SEL selector, NSMenuItem* item, NSInteger index) {
    const BOOL ours = is_item(item) && ![item menu];
    if (self->_items == no_items() || !self->_notifications) [self needArrays];
    if (self->_view || !ours) {
        reinterpret_cast<void (*)(id, SEL, id, NSInteger)>(stock.insert)(self, selector, item,
                                                                         index);
        return;
    }
    insert_item(self->_items, item, static_cast<NSUInteger>(index));
    [item setMenu:self];
    pack_early_item(self->_items);
    told_of_change(self, nil);
}

static void light_remove(NSMenu* self, SEL selector, NSInteger index) {
    if (self->_view) {
        reinterpret_cast<void (*)(id, SEL, NSInteger)>(stock.remove)(self, selector, index);
        return;
    }
    [(NSMenuItem*)[self->_items objectAtIndex:index] setMenu:nil];
    [self->_items removeObjectAtIndex:index];
    told_of_change(self, nil);
}

// Without a view the stock menu shows nothing, so the item is not searched for and the menu is not
// updated, and the delegate gets no message.
static void light_changed(NSMenu* self, SEL selector, NSMenuItem* item) {
    if (self->_view) {
        reinterpret_cast<void (*)(id, SEL, id)>(stock.changed)(self, selector, item);
    } else if ([item menu] == self) {
        told_of_change(self, item);
    }
}

// The stock method performs the item through the view, so a menu with such a key gets its view
// first.
static BOOL light_key_equivalent(NSMenu* self, SEL selector, NSEvent* event) {
    const NSEventType type = [event type];
    if (!self->_view && (type == NSKeyDown || type == NSKeyUp)) {
        NSString* key = [event charactersIgnoringModifiers];
        for (NSMenuItem* item in self->_items) {
            if (![[item keyEquivalent] isEqualToString:key] || [key length] == 0) continue;
            [self needStockRepresentation];
            break;
        }
    }
    return reinterpret_cast<BOOL (*)(id, SEL, id)>(stock.key_equivalent)(self, selector, event);
}

// A menu that was never shown has nothing to close, nor does its supermenu point at it.
static void light_close(NSMenu* self, SEL selector) {
    if (self->_aWindow) reinterpret_cast<void (*)(id, SEL)>(stock.close)(self, selector);
}

// A menu that never had a view observes nothing and has no parts of the stock menu to release.
static void light_deallocate(NSMenu* self, SEL selector) {
    forget_menu_font(self);
    if (self->_view || self->_aWindow) {
        reinterpret_cast<void (*)(id, SEL)>(stock.deallocate)(self, selector);
        return;
    }
    leave_menu(self->_items);
    [self->_items release];
    [self->_notifications release];
    [self->_title release];
    [self->_name release];
    [self deallocAsPlainObject];
}

static BOOL is_same_menu(NSMenu* self, SEL, id other) { return self == other; }

@end

@interface MenuStorageInstaller : NSObject
@end
@implementation MenuStorageInstaller
+ (void)load {
    static const MethodPatch patches[] = {
        {"NSMenu", "initWithTitle:", reinterpret_cast<IMP>(light_init), nullptr},
        {"NSMenu", "insertItem:atIndex:", reinterpret_cast<IMP>(light_insert), &stock.insert},
        {"NSMenu", "removeItemAtIndex:", reinterpret_cast<IMP>(light_remove), &stock.remove},
        {"NSMenu", "itemChanged:", reinterpret_cast<IMP>(light_changed), &stock.changed},
        {"NSMenu", "performKeyEquivalent:", reinterpret_cast<IMP>(light_key_equivalent),
         &stock.key_equivalent},
        {"NSMenu", "dealloc", reinterpret_cast<IMP>(light_deallocate), &stock.deallocate},
        {"NSMenu", "close", reinterpret_cast<IMP>(light_close), &stock.close},
        {"NSMenu", "isEqual:", reinterpret_cast<IMP>(is_same_menu), nullptr},
    };
    patch_methods(patches);
}
@end
