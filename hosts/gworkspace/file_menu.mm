#include "gworkspace/file_menu.h"

#include "finderkit/context_menu.h"
#include "gworkspace/commands.h"
#include "gworkspace/first_items_menu.h"

// The menu's delegate. As in the Finder, the menu is filled and gets its files when it is about to
// be shown.
@interface GWorkspaceFileMenu : NSObject {
  @private
    TContextMenu* _menu;
    FilePlace* _place;
    NSEvent* _event;
}
- (instancetype)initWithPlace:(FilePlace*)place event:(NSEvent*)event;
- (void)popUp;
@end

namespace {

TFENodeVector nodes_at(FilePlace* place) {
    TFENodeVector vector;
    for (id<GWNode> node in [place nodes]) {
        vector.nodes.push_back({[[node path] fileSystemRepresentation]});
    }
    return vector;
}

void add_separator(NSMenu* menu) {
    if ([menu numberOfItems] > 0) [menu addItem:(NSMenuItem*)[NSMenuItem separatorItem]];
}

// A menu that only lists programs becomes a submenu with its own title.
void add_as_submenu(NSMenu* menu, NSMenu* own) {
    NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:[own title]
                                                  action:nullptr
                                           keyEquivalent:@""];
    [menu addItem:item];
    [menu setSubmenu:own forItem:item];
    [item release];
}

void move_items(NSMenu* menu, NSMenu* own) {
    for (NSMenuItem* item in [NSArray arrayWithArray:[own itemArray]]) {
        [item retain];
        [own removeItem:item];
        [menu addItem:item];
        [item release];
    }
}

}  // namespace

@implementation GWorkspaceFileMenu

- (instancetype)initWithPlace:(FilePlace*)place event:(NSEvent*)event {
    if (!(self = [super init])) return nil;
    _place = [place retain];
    _event = [event retain];
    _menu = [[TContextMenu alloc] initWithTitle:@""];
    [_menu setAutoenablesItems:NO];
    [(NSMenu*)_menu setDelegate:(id)self];
    return self;
}

- (void)dealloc {
    [(NSMenu*)_menu setDelegate:nil];
    [_menu release];
    [_place release];
    [_event release];
    [super dealloc];
}

- (void)popUp {
    [NSMenu popUpContextMenu:_menu withEvent:_event forView:[_place view]];
}

// Called several times for one popup.
- (void)menuNeedsUpdate:(NSMenu*)menu {
    if (menu != _menu || [_menu nodes]) return;
    const TFENodeVector nodes = nodes_at(_place);
    [_menu configureWithNodes:&nodes
             windowController:[[[_place view] window] delegate]
                    container:[_place isGround]];
    NSMenu* host = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    [host setAutoenablesItems:NO];
    std::vector<std::string> files;
    for (const TFENode& node : nodes.nodes) files.push_back(node.path);
    add_first_items(host, files);
    add_separator(host);
    [self addOwnItemsTo:host];
    add_commands(host, _place);
    move_items(_menu, host);
}

// Adds GWorkspace's own contextual items, if it has any.
- (void)addOwnItemsTo:(NSMenu*)menu {
    NSMenu* own = [_place ownMenuForEvent:_event];
    if ([own numberOfItems] == 0) return;
    if ([_place listsPrograms]) {
        add_as_submenu(menu, own);
    } else {
        move_items(menu, own);
    }
    add_separator(menu);
}

@end

void pop_up_file_menu(FilePlace* place, NSEvent* event) {
    [place select];
    GWorkspaceFileMenu* menu = [[GWorkspaceFileMenu alloc] initWithPlace:place event:event];
    @try {
        [menu popUp];
    } @finally {
        [place end];
        [menu release];
    }
}
