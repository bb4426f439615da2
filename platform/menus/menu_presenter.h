// Shows a contextual menu on the screen and tracks pointer and keyboard until it closes.
#pragma once

#include <host/menu_tracking.h>

// `listener` is called after open levels may have changed. Adding it again changes nothing.
void add_open_levels_listener(void (*listener)());
void tell_open_levels_changed();

@interface MenuPresenter : NSObject <MenuTracker>
+ (MenuPresenter*)sharedPresenter;
@end
