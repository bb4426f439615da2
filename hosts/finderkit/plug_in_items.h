// What a host may ask about the items that the plug-in puts into menus. No other file names the
// plug-in's classes. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Whether the item is the plug-in's and stands for a file.
bool stands_for_file(NSMenuItem* item);

// Whether the item moves, copies or makes aliases of the selected files, if it is the plug-in's.
bool asks_for_operation(NSMenuItem* item);

// What the items of one file have in common, while their menu is open; null for other items.
const void* file_of_item(NSMenuItem* item);

// The path of that file; nil for other items, and for a path that is no text.
NSString* path_of_item(NSMenuItem* item);

// The file's name as the plug-in shows it; null for other items. It lives as long as the menu.
const char* name_of_item(NSMenuItem* item);

// The name of a question that the loaded plug-in cannot be asked, or null when it answers all.
const char* missing_answer();
