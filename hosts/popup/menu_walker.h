// Trackers that walk a menu without showing it, through the same session as a shown menu.
// Main thread.
#pragma once

#include <host/menu_tracking.h>

#include <string>
#include <vector>

#include "popup/menu_snapshot.h"

// Opens the session, walks, closes it.
// A menu that is read is held as a whole. From so many rows, levels below one another or bytes of
// the process's memory on no further submenu is opened.
inline constexpr long most_read_rows = 100000;
inline constexpr int most_read_levels = 256;
inline constexpr long most_read_bytes = 1L << 30;

@interface MenuWalker : NSObject <MenuTracker>
// What the walk does; here nothing.
- (void)walk:(MenuSession*)session;
@end

// Opens levels and reads them.
@interface MenuReader : MenuWalker {
  @private
    int _depth;
    BOOL _details;
    MenuSnapshot* _snapshot;
    long _rows;
    long _leftClosed;
}
// `depth`: how many levels of submenus to open; `details`: whether items have theirs.
- (instancetype)initWithDepth:(int)depth details:(BOOL)details;
- (const MenuSnapshot&)snapshot;
// In one line, that submenus stay closed for want of bounds; empty when none does.
- (std::string)problem;
@end

// Picks an item by the titles that lead to it.
@interface MenuPicker : MenuWalker {
  @private
    std::vector<std::string>* _titles;
    std::string* _problem;
}
- (instancetype)initWithTitles:(const std::vector<std::string>&)titles;
// In one line, why nothing was picked; empty when something was.
- (const std::string&)problem;
@end

// The item of that title that an open level shows while the held modifier keys are down; nil with
// *problem when there is none.
NSMenuItem* FindVisibleItem(NSMenu* menu, const std::string& title, std::string* problem);

// Opens the submenus that the titles name, one in the other, from the root. False with *problem
// when one of them cannot be opened. *last is the menu that the last one opened, or the root.
bool OpenByTitles(MenuSession* session, const std::vector<std::string>& titles, NSMenu** last,
                  std::string* problem);
