// Reads menus into records. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "popup/menu_snapshot.h"

// The text in UTF-8; halves of characters that have no UTF-8 become replacement characters.
std::string TextOf(NSString* string);

// The item itself, with details if they are wanted. Of its submenu only the title: the one who
// opens it adds the items.
ItemSnapshot ReadItem(NSMenuItem* item, bool details);
