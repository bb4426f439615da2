// Reads menus into records. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "popup/menu_snapshot.h"

// The text in UTF-8; lone surrogates, which have no UTF-8, become replacement characters.
std::string utf8_text(NSString* string);

// The item itself, with details if they are wanted. Of its submenu only the title: the caller that
// opens the submenu adds its items.
ItemSnapshot read_item(NSMenuItem* item, bool details);
