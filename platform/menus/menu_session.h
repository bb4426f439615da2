// What a session tells the tracker of ours that drives it.
#pragma once

#include <host/menu_tracking.h>

@protocol MenuSessionWatcher
// Sent when levels, highlight or end have changed, whoever changed them.
- (void)sessionDidChange:(MenuSession*)session;
// Whether the submenu of the highlighted item can be opened now. With NO the watcher opens it
// later.
- (BOOL)session:(MenuSession*)session canOpenSubmenuOfItem:(NSMenuItem*)item;
@end

@interface MenuSession (Watching)
// Not retained; nil removes the watcher.
- (void)setWatcher:(id<MenuSessionWatcher>)watcher;
// Opens a menu as a level in the place of the item's submenu. It has no delegate.
- (void)openStandIn:(NSMenu*)menu forItem:(NSMenuItem*)item;
// The item in the place of whose submenu an open level stands; nil for other levels.
- (NSMenuItem*)itemOfStandIn:(NSMenu*)menu;
// Sends the action of the picked item, if there is one. Called after -close.
- (void)performPick;
@end
