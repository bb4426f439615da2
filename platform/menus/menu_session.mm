#include "menus/menu_items.h"
#include "menu_classes/menu_memory.h"
#include "menus/menu_session.h"

namespace {

// The sessions between -open and -close, innermost last. They are alive as long as they are here:
// the popup that runs a session holds it.
NSMutableArray* open_sessions() {
    static NSMutableArray* sessions = [NSMutableArray new];
    return sessions;
}

}  // namespace

@interface MenuSession (Private)
- (NSUInteger)depthOfMenu:(NSMenu*)menu;
- (void)openLevel:(NSMenu*)menu;
- (void)closeLevelsFrom:(NSUInteger)depth;
- (void)changed;
@end

@implementation MenuSession

- (instancetype)initWithMenu:(NSMenu*)menu {
    if (!(self = [super init])) return nil;
    _levels = [NSMutableArray new];
    _highlights = [NSMutableArray new];
    _root = [menu retain];
    return self;
}

- (void)dealloc {
    [_levels release];
    [_highlights release];
    [_root release];
    [_pick release];
    [_pickMenu release];
    [super dealloc];
}

+ (MenuSession*)current {
    return [open_sessions() lastObject];
}

+ (MenuSession*)sessionOfMenu:(NSMenu*)menu {
    for (MenuSession* session in [open_sessions() reverseObjectEnumerator]) {
        if ([session depthOfMenu:menu] != NSNotFound) return session;
    }
    return nil;
}

+ (NSArray*)visibleItemsOfMenu:(NSMenu*)menu withModifiers:(NSUInteger)modifiers {
    NSArray* items = [menu itemArray];
    NSMutableArray* shown = [NSMutableArray arrayWithCapacity:[items count]];
    append_visible_items(items, modifiers, shown);
    return shown;
}

- (NSMenu*)rootMenu {
    return _root;
}

- (NSArray*)levels {
    return [NSArray arrayWithArray:_levels];
}

- (NSMenuItem*)highlightedItemOfMenu:(NSMenu*)menu {
    const NSUInteger depth = [self depthOfMenu:menu];
    if (depth == NSNotFound) return nil;
    id item = [_highlights objectAtIndex:depth];
    return item == [NSNull null] ? nil : item;
}

- (void)open {
    if ([_levels count] || _ending) return;
    [open_sessions() addObject:self];
    [[NSNotificationCenter defaultCenter] postNotificationName:NSMenuDidBeginTrackingNotification
                                                        object:_root];
    [self openLevel:_root];
}

- (void)highlightItem:(NSMenuItem*)item inMenu:(NSMenu*)menu {
    const NSUInteger depth = [self depthOfMenu:menu];
    if (depth == NSNotFound) return;
    if (!can_highlight(item) || [item menu] != menu) item = nil;
    if (item == [self highlightedItemOfMenu:menu]) return;
    [_highlights replaceObjectAtIndex:depth withObject:item ?: [NSNull null]];
    id delegate = [menu delegate];
    if ([delegate respondsToSelector:@selector(menu:willHighlightItem:)]) {
        [delegate menu:menu willHighlightItem:item];
    }
    [self changed];
}

- (BOOL)openSubmenuOfItem:(NSMenuItem*)item {
    NSMenu *menu = [item menu], *submenu = [item submenu];
    const NSUInteger depth = [self depthOfMenu:menu];
    if (depth == NSNotFound || _ending || !submenu || ![item isEnabled]) return NO;
    [[item retain] autorelease];
    [self highlightItem:item inMenu:menu];
    id below = depth + 1 < [_levels count] ? [_levels objectAtIndex:depth + 1] : nil;
    if (below == submenu) return YES;
    if (_watcher && ![_watcher session:self canOpenSubmenuOfItem:item]) {
        if ([self itemOfStandIn:below] != item) [self closeLevelsFrom:depth + 1];
        return NO;
    }
    [self closeLevelsFrom:depth + 1];
    // A delegate may have closed the item's own level, or opened this one elsewhere.
    if ([_levels count] != depth + 1 || [_levels lastObject] != menu) return NO;
    if ([self depthOfMenu:submenu] != NSNotFound) return NO;
    [self openLevel:submenu];
    return [self depthOfMenu:submenu] != NSNotFound;
}

- (void)closeLevelsBelowMenu:(NSMenu*)menu {
    const NSUInteger depth = [self depthOfMenu:menu];
    if (depth != NSNotFound) [self closeLevelsFrom:depth + 1];
}

- (void)cancel {
    if (_ending) return;
    _ending = YES;
    [self changed];
}

- (void)pickItem:(NSMenuItem*)item {
    if (_ending || !can_pick(item)) return;
    _pick = [item retain];
    _pickMenu = [[item menu] retain];
    _ending = YES;
    [self changed];
}

+ (BOOL)canPickItem:(NSMenuItem*)item {
    return can_pick(item);
}

- (BOOL)isEnding {
    return _ending;
}

- (NSMenuItem*)pickedItem {
    return _pick;
}

- (void)close {
    _ending = YES;
    if ([open_sessions() indexOfObjectIdenticalTo:self] == NSNotFound) return;
    @try {
        [self closeLevelsFrom:0];
    } @finally {
        [open_sessions() removeObjectIdenticalTo:self];
        NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
        [center postNotificationName:NSMenuDidEndTrackingNotification object:_root];
    }
}

@end

@implementation MenuSession (Private)

- (NSUInteger)depthOfMenu:(NSMenu*)menu {
    // By identity: two menus of the same title and items are "equal" to GNUstep.
    return menu ? [_levels indexOfObjectIdenticalTo:menu] : NSNotFound;
}

- (void)openLevel:(NSMenu*)menu {
    [_levels addObject:menu];
    [_highlights addObject:[NSNull null]];
    // Objects that a delegate autoreleases for thousands of items are freed at once, not when the
    // popup ends. After an exception the pool around this one frees them.
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    update_menu(menu);
    id delegate = [menu delegate];
    if ([delegate respondsToSelector:@selector(menuWillOpen:)]) {
        [delegate menuWillOpen:menu];
        validate_items(menu);
    }
    [pool drain];
    note_opened_items([menu numberOfItems]);
    [self changed];
}

- (void)closeLevelsFrom:(NSUInteger)depth {
    while ([_levels count] > depth) {
        NSMenu* menu = [[[_levels lastObject] retain] autorelease];
        [_levels removeLastObject];
        [_highlights removeLastObject];
        if (menu == _standIn) _standIn = nil;
        [self changed];
        id delegate = [menu delegate];
        @try {
            if ([delegate respondsToSelector:@selector(menuDidClose:)])
                [delegate menuDidClose:menu];
        } @finally {
            [self closeLevelsFrom:depth];  // the others close even if this delegate raised
        }
    }
}

- (void)changed {
    [_watcher sessionDidChange:self];
}

@end

@implementation MenuSession (Watching)

- (void)setWatcher:(id<MenuSessionWatcher>)watcher {
    _watcher = watcher;
}

- (void)openStandIn:(NSMenu*)menu forItem:(NSMenuItem*)item {
    const NSUInteger depth = [self depthOfMenu:[item menu]];
    if (depth == NSNotFound || _ending) return;
    [self closeLevelsFrom:depth + 1];
    if ([_levels count] != depth + 1) return;
    _standIn = menu;
    _standInItem = item;
    [_levels addObject:menu];
    [_highlights addObject:[NSNull null]];
    [self changed];
}

- (NSMenuItem*)itemOfStandIn:(NSMenu*)menu {
    return menu && menu == _standIn ? _standInItem : nil;
}

- (void)performPick {
    if (!_pick) return;
    NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
    NSDictionary* info = [NSDictionary dictionaryWithObject:_pick forKey:@"MenuItem"];
    [center postNotificationName:NSMenuWillSendActionNotification object:_pickMenu userInfo:info];
    @try {
        send_action(_pick);
    } @finally {
        [center postNotificationName:NSMenuDidSendActionNotification
                              object:_pickMenu
                            userInfo:info];
    }
}

@end
