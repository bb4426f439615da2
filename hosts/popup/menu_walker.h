// Trackers that walk a menu without showing it, through the same session as a shown menu.
// Main thread.
#pragma once

#include <host/menu_tracking.h>

#include <string>
#include <vector>

#include "popup/menu_reading.h"
#include "popup/menu_writer.h"

// Limits of a read menu, whose levels are held in memory as a whole. No further submenu is opened
// after so many rows, below so many levels, or when the process holds so many bytes of memory.
inline constexpr long most_read_rows = 100000;
inline constexpr int most_read_levels = 256;
inline constexpr long most_read_bytes = 1L << 30;

// Opens the session, walks it, and closes it.
@interface MenuWalker : NSObject <MenuTracker>
// What the walk does; here nothing.
- (void)walk:(MenuSession*)session;
@end

// Opens levels, reads them and writes what it reads. The levels stay in memory until the process
// ends.
@interface MenuReader : MenuWalker {
  @private
    int _depth;
    ItemReader* _items;
    MenuWriter* _writer;
    long _rows;
    long _leftClosed;
}
// `depth`: how many levels of submenus to open. The writer stays the caller's. `details`: whether
// it needs them.
- (instancetype)initWithDepth:(int)depth writer:(MenuWriter*)writer details:(BOOL)details;
// One line that says that submenus stay closed because of the limits; empty when none does.
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

// The item with this title that an open level shows while the held modifier keys are down; nil with
// *problem when there is none.
NSMenuItem* find_visible_item(NSMenu* menu, const std::string& title, std::string* problem);

// Opens the submenus that the titles name, each inside the one before, from the root. False with
// *problem when one of them cannot be opened. *last is the menu that was opened last, or the root.
bool open_by_titles(MenuSession* session, const std::vector<std::string>& titles, NSMenu** last,
                    std::string* problem);
