// What a session tells the tracker of ours that drives it.
#pragma once

#include <host/menu_tracking.h>

@protocol MenuSessionWatcher
// Sent when levels, highlight or end have changed, whoever changed them.
- (void)sessionDidChange:(MenuSession*)session;
@end

@interface MenuSession (Watching)
// Not retained; nil removes the watcher.
- (void)setWatcher:(id<MenuSessionWatcher>)watcher;
// Sends the action of the picked item, if there is one. Called after -close.
- (void)performPick;
@end
