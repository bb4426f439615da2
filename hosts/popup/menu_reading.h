// Reads menus into records. Main thread.
#pragma once

#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>

#include "popup/menu_snapshot.h"

// The text in UTF-8; lone surrogates, which have no UTF-8, become replacement characters.
std::string utf8_text(NSString* string);

// Reads the items of open levels one after the other. An item's alternates mostly have its title
// and its file, so these become text only once.
class ItemReader {
  public:
    // With `details`, the records have them.
    explicit ItemReader(bool details) : details_(details) {}
    ~ItemReader() { [title_ release]; }
    ItemReader(const ItemReader&) = delete;
    ItemReader& operator=(const ItemReader&) = delete;

    // Reads the menu's item at this index. The record stays until the next call.
    const ItemSnapshot& read(NSMenu* menu, NSInteger index);

  private:
    void read_item(NSMenuItem* item);
    void read_alternate(const AlternateFields& item);
    void read_title(NSString* title);
    void read_details(NSMenuItem* item);

    const bool details_;
    ItemSnapshot snapshot_;
    NSString* title_ = nil;       // whose text the snapshot has
    const void* file_ = nullptr;  // whose path the snapshot has
};
