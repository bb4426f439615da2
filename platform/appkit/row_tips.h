// Tips for the rows of menus: the whole name of a shortened row and the folder of its file, and why
// a folder shows nothing. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>

#include "menus/menu_level.h"

// The lines of a row's tip; empty for a row that says all itself. May ask the disk.
std::string tip_of(const MenuLevel& level, NSMenuItem* item);

// The name that an item's title abbreviates, else the title.
NSString* whole_title(NSMenuItem* item);

// The text of the tip that is shown; empty for none.
std::string shown_tip();
