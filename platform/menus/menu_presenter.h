// Shows a contextual menu on the screen and tracks pointer and keyboard until it closes.
#pragma once

#include <host/menu_tracking.h>

// Is called after open levels may have changed. One listener a process; null ends it.
void set_open_levels_listener(void (*listener)());
void tell_open_levels_changed();

@interface MenuPresenter : NSObject <MenuTracker>
+ (MenuPresenter*)sharedPresenter;
@end
