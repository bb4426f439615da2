#include "popup/host_menu.h"

#include <host/text.h>

#include "popup/asked_operations.h"
#include "popup/file_actions.h"
#include "popup/settings_program.h"

namespace {

// The host's actions, in order.
const std::vector<HostItem>& host_actions() {
    static const auto& items = *new std::vector<HostItem>{
        {to_translate("Open"), open_files},
        {to_translate("Show in File Manager"), show_in_file_manager},
        {to_translate("Copy Path"), copy_paths},
        {"", nullptr},
        {to_translate("Move to Trash"), move_to_trash},
    };
    return items;
}

// All items of the host for these files.
std::vector<HostItem> host_items(const std::vector<std::string>& files, bool for_people) {
    std::vector<HostItem> items =
        first_items(files, for_people, {undo_last_operation, open_settings});
    items.push_back({"", nullptr});
    for (HostItem item : host_actions()) {
        if (!item.title.empty() && for_people) item.title = translated(item.title.c_str());
        items.push_back(item);
    }
    return items;
}

TFENodeVector nodes_of(const std::vector<std::string>& files) {
    TFENodeVector vector;
    for (const std::string& file : files) vector.nodes.push_back({file});
    return vector;
}

}  // namespace

@interface HostMenu (Filling)
- (void)fillMenu:(TContextMenu*)menu;
- (void)addItem:(const HostItem&)hostItem at:(NSInteger)index;
- (void)hostItemSelected:(NSMenuItem*)item;
@end

@implementation HostMenu

- (instancetype)initWithFiles:(const std::vector<std::string>&)files forPeople:(BOOL)isForPeople {
    if (!(self = [super init])) return nil;
    _isForPeople = isForPeople;
    _files = new std::vector<std::string>(files);
    _problem = new std::string;
    _items = new std::vector<HostItem>;
    _menu = [[TContextMenu alloc] initWithTitle:@"Delvio"];
    [_menu setAutoenablesItems:NO];
    [(NSMenu*)_menu setDelegate:(id)self];
    return self;
}

- (void)dealloc {
    [(NSMenu*)_menu setDelegate:nil];
    [_menu release];
    delete _files;
    delete _problem;
    delete _items;
    [super dealloc];
}

- (NSMenu*)menu {
    return _menu;
}

- (const std::string&)problem {
    return *_problem;
}

+ (BOOL)madeItem:(NSMenuItem*)item {
    return [item representedObject] == self;
}

// Called several times for one popup, also when the menu already holds a plug-in's items.
- (void)menuNeedsUpdate:(NSMenu*)menu {
    if (menu == _menu && ![_menu nodes]) [self fillMenu:_menu];
}

@end

@implementation HostMenu (Filling)

- (void)fillMenu:(TContextMenu*)menu {
    const TFENodeVector nodes = nodes_of(*_files);
    [menu removeAllItems];
    [menu configureWithNodes:&nodes windowController:nil container:NO];
    *_items = host_items(*_files, _isForPeople);
    NSInteger index = 0;
    for (const HostItem& item : *_items) [self addItem:item at:index++];
}

- (void)addItem:(const HostItem&)hostItem at:(NSInteger)index {
    NSMenuItem* item = (NSMenuItem*)[NSMenuItem separatorItem];
    if (!hostItem.title.empty()) {
        NSString* title = [NSString stringWithUTF8String:hostItem.title.c_str()];
        item = [[[NSMenuItem alloc] initWithTitle:title ?: @""
                                           action:@selector(hostItemSelected:)
                                    keyEquivalent:@""] autorelease];
        [item setTarget:self];
        [item setTag:index];
    }
    // Items retain this object, so it must not be the one that holds their menu.
    [item setRepresentedObject:[HostMenu class]];
    [_menu addItem:item];
}

- (void)hostItemSelected:(NSMenuItem*)item {
    *_problem = _items->at(static_cast<size_t>([item tag])).action(*_files);
}

@end
