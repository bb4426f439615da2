#include "platform/recording_delegate.h"

@implementation RecordingDelegate

- (id)init {
    if (!(self = [super init])) return nil;
    _log = [NSMutableArray new];
    _menus = [NSMutableArray new];
    _names = [NSMutableArray new];
    return self;
}

- (void)dealloc {
    for (NSMenu* menu in _menus) [menu setDelegate:nil];
    [_log release];
    [_menus release];
    [_names release];
    [super dealloc];
}

- (NSMenu*)menuNamed:(NSString*)name {
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:name] autorelease];
    [menu setAutoenablesItems:NO];
    [menu setDelegate:(id)self];
    [self nameMenu:menu as:name];
    return menu;
}

- (void)nameMenu:(NSMenu*)menu as:(NSString*)name {
    const NSUInteger index = [_menus indexOfObjectIdenticalTo:menu];
    if (index != NSNotFound) {
        [_names replaceObjectAtIndex:index withObject:name];
        return;
    }
    [_menus addObject:menu];
    [_names addObject:name];
}

- (NSString*)nameOfMenu:(NSMenu*)menu {
    const NSUInteger index = [_menus indexOfObjectIdenticalTo:menu];
    return index == NSNotFound ? @"?" : [_names objectAtIndex:index];
}

- (NSMenuItem*)addItem:(NSString*)title toMenu:(NSMenu*)menu {
    NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:title
                                                   action:@selector(picked:)
                                            keyEquivalent:@""] autorelease];
    [item setTarget:self];
    [menu addItem:item];
    return item;
}

- (void)note:(NSString*)line {
    [_log addObject:line];
}

- (std::string)log {
    return [[_log componentsJoinedByString:@", "] UTF8String];
}

- (std::string)takeLog {
    const std::string text = [self log];
    [_log removeAllObjects];
    return text;
}

- (void)menuNeedsUpdate:(NSMenu*)menu {
    [self note:[@"update " stringByAppendingString:[self nameOfMenu:menu]]];
}

- (void)menuWillOpen:(NSMenu*)menu {
    [self note:[@"open " stringByAppendingString:[self nameOfMenu:menu]]];
}

- (void)menuDidClose:(NSMenu*)menu {
    [self note:[@"close " stringByAppendingString:[self nameOfMenu:menu]]];
}

- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item {
    (void)menu;
    [self note:[@"highlight " stringByAppendingString:item ? [item title] : @"nil"]];
}

- (BOOL)validateMenuItem:(NSMenuItem*)item {
    return ![[item title] isEqualToString:@"refuse"];
}

- (void)picked:(NSMenuItem*)item {
    [self note:[@"pick " stringByAppendingString:[item title]]];
}

@end

@implementation ItemByItemDelegate

- (NSInteger)numberOfItemsInMenu:(NSMenu*)menu {
    (void)menu;
    return 3;
}

- (BOOL)menu:(NSMenu*)menu
      updateItem:(NSMenuItem*)item
         atIndex:(NSInteger)index
    shouldCancel:(BOOL)cancel {
    (void)menu, (void)cancel;
    [item setTitle:[NSString stringWithFormat:@"item %ld", (long)index]];
    return YES;
}

@end
