// What a tracker of our own hears from the session that it drives.
#pragma once

#include <host/menu_tracking.h>

@protocol MenuSessionWatcher
// Levels, highlight or end changed, by whomever.
- (void)sessionDidChange:(MenuSession*)session;
@end

@interface MenuSession (Watching)
// Not retained; nil ends it.
- (void)setWatcher:(id<MenuSessionWatcher>)watcher;
// Sends the action of the pick, if there is one. After -close.
- (void)performPick;
@end
