#include "tried_menu.h"

#include "require.h"

using fuzz::require;

// Draws itself, and follows the pointer.
@interface TriedView : NSView
@end

@implementation TriedView
- (void)drawRect:(NSRect)rect {
    [[NSColor redColor] set];
    NSRectFill(rect);
}
- (void)mouseUp:(NSEvent*)event {
    (void)event;
    [[[self menu] retain] release];
    [self setNeedsDisplay:YES];
}
@end

@implementation TriedMenu

- (NSMenu*)menuNamed:(NSString*)name {
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:name] autorelease];
    [menu setAutoenablesItems:NO];
    [menu setDelegate:(id)self];
    return menu;
}

- (NSMenuItem*)addItem:(NSString*)title to:(NSMenu*)menu {
    NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:title
                                                   action:@selector(picked:)
                                            keyEquivalent:@""] autorelease];
    [item setTarget:self];
    [menu addItem:item];
    return item;
}

- (NSMenu*)addFolder:(NSString*)title to:(NSMenu*)menu {
    NSMenu* submenu = [self menuNamed:title];
    NSMenuItem* item = [self addItem:title to:menu];
    [item setAction:NULL];
    [item setSubmenu:submenu];
    return submenu;
}

- (void)fillRoot:(BOOL)isLong {
    [self addItem:@"alpha" to:_root];
    NSMenu* folder = [self addFolder:@"folder" to:_root];
    [self addItem:@"inner" to:folder];
    [self addItem:@"leaf" to:[self addFolder:@"deeper" to:folder]];
    [[self addItem:@"whole" to:_root] setSubmenu:[self menuNamed:@"empty"]];
    [_root addItem:[NSMenuItem separatorItem]];
    [[self addItem:@"disabled" to:_root] setEnabled:NO];
    [self addItem:@"plain" to:_root];
    NSMenuItem* alternate = [self addItem:@"alternate" to:_root];
    [alternate setAlternate:YES];
    [alternate setKeyEquivalentModifierMask:NSAlternateKeyMask];
    NSView* view = [[[TriedView alloc] initWithFrame:NSMakeRect(0, 0, 60, 20)] autorelease];
    [[self addItem:@"view" to:_root] setView:view];
    [self addItem:@"\u00e4\u00f6 \u05d0\u05d1 \U0001F600" to:_root];
    for (int i = 0; i < (isLong ? 40 : 0); i++) {
        [self addItem:[NSString stringWithFormat:@"row %d", i] to:_root];
    }
}

- (instancetype)initLong:(BOOL)isLong {
    if (!(self = [super init])) return nil;
    _open = [NSMutableArray new];
    _root = [[self menuNamed:@"root"] retain];
    [self fillRoot:isLong];
    return self;
}

- (void)dealloc {
    [_root release];
    [_open release];
    [super dealloc];
}

- (NSMenu*)root {
    return _root;
}

- (void)changeBy:(fuzz::Input&)input {
    NSMenu* menu = [_open count] ? [_open objectAtIndex:input.byte() % [_open count]] : _root;
    const NSInteger count = [menu numberOfItems];
    const uint8_t what = input.byte();
    NSMenuItem* item = count ? [menu itemAtIndex:input.byte() % count] : nil;
    switch (what % 8) {
        case 0:
            if (count < 200) [self addItem:@"new" to:menu];
            return;
        case 1:
            if (item) [menu removeItem:item];
            return;
        case 2:
            return [menu removeAllItems];
        case 3:
            return [item setEnabled:![item isEnabled]];
        case 4:
            return [item setTitle:@"another title that is longer"];
        case 5:
            return [item setAlternate:![item isAlternate]];
        case 6:
            return [item setSubmenu:[item hasSubmenu] ? nil : [self menuNamed:@"late"]];
        default:
            return [_root cancelTracking];
    }
}

- (void)menuWillOpen:(NSMenu*)menu {
    require([_open indexOfObjectIdenticalTo:menu] == NSNotFound, "a level opens once");
    [_open addObject:menu];
}

- (void)menuDidClose:(NSMenu*)menu {
    const NSUInteger index = [_open indexOfObjectIdenticalTo:menu];
    require(index != NSNotFound && index + 1 == [_open count], "the deepest level closes");
    [_open removeLastObject];
}

- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item {
    require(!item || ([item menu] == menu && [item isEnabled]), "an item to highlight");
}

- (void)picked:(NSMenuItem*)item {
    require([_open count] == 0, "a pick comes when all are closed");
    require(item != nil, "an item is picked");
    _picks++;
}

- (void)checkClosed {
    require([_open count] == 0, "every level is closed");
    require(_picks <= 1, "one item is picked");
    _picks = 0;
}

@end
