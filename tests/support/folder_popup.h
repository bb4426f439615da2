// A folder's contextual menu with the plug-in's items, opened without a mouse, for measurements.
// Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>

@class MenuSession;

// Subclasses say what happens while the menu is open.
@interface FolderPopup : NSObject {
  @private
    std::string* _folder;
    id _menu;
}
- (instancetype)initWithFolder:(const std::string&)folder;
// Opens the menu, and returns when it has closed.
- (void)run;
// The menu tracks. Here this ends the session; a subclass has to end it, too.
- (void)track:(MenuSession*)session;
@end

// Opens the submenu of an item. Returns when its folder has answered and its items are there: at
// once where the folder is on a local disk.
void open_level(MenuSession* session, NSMenuItem* item);

// Opens the submenu of the menu's first item, shows it, and returns its last item.
NSMenuItem* open_first_submenu(MenuSession* session);

// Brings the open levels and the screen up to date.
void show_open_levels();

// Starts the application and loads the plug-in. False, with a message on standard error, when it
// cannot be loaded.
bool start_with_plug_in(const char* bundle);
