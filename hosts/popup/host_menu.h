// The contextual menu that this host makes for its files, and the actions of its items. Main
// thread.
#pragma once

#include <string>
#include <vector>

#include "finderkit/context_menu.h"
#include "offers/first_items.h"

// The menu's delegate and the target of its items. As in a file manager, the menu is filled and
// configured with the files when it is about to be shown.
@interface HostMenu : NSObject {
  @private
    TContextMenu* _menu;
    std::vector<std::string>* _files;
    std::string* _problem;
    std::vector<HostItem>* _items;
    BOOL _isForPeople;
}
// Absolute paths, at least one. A menu for people has its titles in their language.
- (instancetype)initWithFiles:(const std::vector<std::string>&)files forPeople:(BOOL)isForPeople;
- (NSMenu*)menu;
// Why the picked item failed, in one line; empty if it succeeded, or none was picked.
- (const std::string&)problem;
// Whether the item is one of the host's own.
+ (BOOL)madeItem:(NSMenuItem*)item;
@end
