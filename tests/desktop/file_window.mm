#include "desktop/file_window.h"

namespace {

NSString* const titles[] = {@"Open", @"Get Info", @"Duplicate"};

}  // namespace

std::vector<std::string> host_titles() {
    std::vector<std::string> names;
    for (NSString* title : titles) names.push_back([title UTF8String]);
    return names;
}

@interface FileWindowView : NSView {
  @private
    FileWindow* _owner;
}
- (void)setOwner:(FileWindow*)owner;
@end

@interface FileWindow (Popup)
- (void)popUpWithEvent:(NSEvent*)event view:(NSView*)view;
- (void)fill:(NSMenu*)menu;
@end

@implementation FileWindowView
- (void)setOwner:(FileWindow*)owner {
    _owner = owner;
}
- (void)rightMouseDown:(NSEvent*)event {
    [_owner popUpWithEvent:event view:self];
}
- (void)drawRect:(NSRect)dirty {
    [[NSColor colorWithDeviceRed:0.93 green:0.95 blue:0.97 alpha:1] set];
    NSRectFill(dirty);
}
@end

@implementation FileWindow

- (instancetype)init {
    if (!(self = [super init])) return nil;
    _files = new std::vector<std::string>;
    _messages = new std::vector<std::string>;
    _window = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 200, 500, 400)
                                          styleMask:NSBorderlessWindowMask
                                            backing:NSBackingStoreBuffered
                                              defer:NO];
    [_window setReleasedWhenClosed:NO];
    FileWindowView* view = [[FileWindowView alloc] initWithFrame:NSMakeRect(0, 0, 500, 400)];
    [view setOwner:self];
    [_window setContentView:view];
    [view release];
    [_window makeKeyAndOrderFront:nil];
    return self;
}

- (void)dealloc {
    [_window close];
    [_window release];
    [(NSMenu*)_menu setDelegate:nil];
    [_menu release];
    delete _files;
    delete _messages;
    [super dealloc];
}

- (void)setFiles:(const std::vector<std::string>&)files {
    *_files = files;
}

- (TContextMenu*)menu {
    return _menu;
}

- (int)popups {
    return _popups;
}

- (const std::vector<std::string>&)messages {
    return *_messages;
}

- (void)rebuildMenu {
    [_menu removeAllItems];
    [self fill:_menu];
}

- (void)menuNeedsUpdate:(NSMenu*)menu {
    _messages->push_back("menuNeedsUpdate:");
    if (menu != _menu || [_menu nodes]) return;
    TFENodeVector selection;
    for (const std::string& file : *_files) selection.nodes.push_back({file});
    [_menu configureWithNodes:&selection windowController:nil container:NO];
    [self fill:_menu];
}

- (void)menuDidClose:(NSMenu*)menu {
    (void)menu;
    _messages->push_back("menuDidClose:");
}

- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item {
    (void)menu;
    _messages->push_back("highlight " + std::string([[item title] UTF8String] ?: "nothing"));
}

@end

@implementation FileWindow (Popup)

- (void)popUpWithEvent:(NSEvent*)event view:(NSView*)view {
    _messages->clear();
    [(NSMenu*)_menu setDelegate:nil];
    [_menu release];
    _menu = [[TContextMenu alloc] initWithTitle:@""];
    [_menu setAutoenablesItems:NO];
    [(NSMenu*)_menu setDelegate:(id)self];
    [NSMenu popUpContextMenu:_menu withEvent:event forView:view];
    ++_popups;
}

- (void)fill:(NSMenu*)menu {
    for (NSString* title : titles) {
        [menu addItemWithTitle:title action:@selector(hostItemSelected:) keyEquivalent:@""];
        [[[menu itemArray] lastObject] setTarget:self];
    }
}

- (void)hostItemSelected:(NSMenuItem*)item {
    _messages->push_back("picked " + std::string([[item title] UTF8String]));
}

@end
