// Walks a popped-up menu without showing it: what happens meanwhile is the test's.
#pragma once

#include <host/menu_tracking.h>

#include <functional>

using walk_t = std::function<void(MenuSession*)>;

@interface WalkingTracker : NSObject <MenuTracker> {
  @private
    walk_t _walk;
    int _popups;
    NSFont* _font;
    NSMenu* _menu;
}
// Called between the opening and the closing of each menu.
- (void)setWalk:(const walk_t&)walk;
// Of the popups so far: how many, and the last one's font and menu.
- (int)popups;
- (NSFont*)font;
- (NSMenu*)menu;
@end
