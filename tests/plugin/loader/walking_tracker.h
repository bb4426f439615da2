// Walks through a popped-up menu without showing it. The test decides what happens at each menu.
#pragma once

#include <host/menu_tracking.h>

#include <functional>

using Walk = std::function<void(MenuSession*)>;

@interface WalkingTracker : NSObject <MenuTracker> {
  @private
    Walk _walk;
    int _popups;
    NSFont* _font;
    NSMenu* _menu;
}
// Called between the opening and the closing of each menu.
- (void)setWalk:(const Walk&)walk;
// About the popups so far: how many, and the last one's font and menu.
- (int)popups;
- (NSFont*)font;
- (NSMenu*)menu;
@end
