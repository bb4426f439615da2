#include "plugin/loader/recording_host.h"

@implementation RecordingHost

- (void)dealloc {
    [_itemToAdd release];
    [super dealloc];
}

- (std::string)log {
    std::string log;
    log.swap(_log);
    return log;
}

- (void)setItemToAdd:(NSString*)title {
    _itemToAdd = [title copy];
}

- (void)setUpdate:(const std::function<void()>&)update {
    _update = update;
}

- (void)note:(const char*)word {
    if (!_log.empty()) _log += ' ';
    _log += word;
}

- (void)menuWillOpen:(NSMenu*)menu {
    (void)menu;
    [self note:"open"];
}

- (void)menuNeedsUpdate:(NSMenu*)menu {
    [self note:"update"];
    if (_update) _update();
    if (!_itemToAdd || [menu indexOfItemWithTitle:_itemToAdd] >= 0) return;
    [menu addItemWithTitle:_itemToAdd action:nullptr keyEquivalent:@""];
}

- (void)menuDidClose:(NSMenu*)menu {
    (void)menu;
    [self note:"close"];
}

- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item {
    (void)menu;
    (void)item;
    [self note:"highlight"];
}

- (NSInteger)numberOfItemsInMenu:(NSMenu*)menu {
    (void)menu;
    [self note:"count"];
    return 42;
}

- (BOOL)menu:(NSMenu*)menu
      updateItem:(NSMenuItem*)item
         atIndex:(NSInteger)index
    shouldCancel:(BOOL)shouldCancel {
    (void)menu;
    (void)item;
    (void)index;
    (void)shouldCancel;
    [self note:"item"];
    return NO;
}

- (BOOL)menuHasKeyEquivalent:(NSMenu*)menu
                    forEvent:(NSEvent*)event
                      target:(id*)target
                      action:(SEL*)action {
    (void)menu;
    (void)event;
    *target = self;
    *action = @selector(note:);
    [self note:"key"];
    return YES;
}

@end

@implementation SilentHost

- (void)menuDidClose:(NSMenu*)menu {
    (void)menu;
}

@end

namespace {

BOOL refuses_clearing = NO;

}  // namespace

@implementation RecordingMenu

- (void)dealloc {
    [_changed release];
    [super dealloc];
}

- (void)itemChanged:(NSMenuItem*)item {
    if (!_changed) _changed = [NSMutableArray new];
    [_changed addObject:[item title]];
    [super itemChanged:item];
}

- (NSArray*)takeChanged {
    NSArray* changed = [_changed autorelease];
    _changed = nil;
    return changed;
}

- (void)setRefusesRemoval:(BOOL)refuses {
    _refusesRemoval = refuses;
}

- (void)setRefusesInsertion:(BOOL)refuses {
    _refusesInsertion = refuses;
}

- (void)setOnChange:(const std::function<void()>&)onChange {
    _onChange = onChange;
}

+ (void)setRefusesClearing:(BOOL)refuses {
    refuses_clearing = refuses;
}

- (void)insertItem:(NSMenuItem*)item atIndex:(NSInteger)index {
    if (_onChange) _onChange();
    if (_refusesInsertion) [NSException raise:NSGenericException format:@"refused"];
    [super insertItem:item atIndex:index];
}

- (void)removeAllItems {
    if (refuses_clearing) [NSException raise:NSGenericException format:@"refused"];
    [super removeAllItems];
}

- (void)removeItem:(NSMenuItem*)item {
    if (_onChange) _onChange();
    if (_refusesRemoval) [NSException raise:NSGenericException format:@"refused"];
    [super removeItem:item];
}

@end
