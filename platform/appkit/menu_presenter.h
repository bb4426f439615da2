// Shows a contextual menu on the screen and tracks pointer and keyboard until it closes.
#pragma once

#include <AppKit/MenuTracking.h>

@interface MenuPresenter : NSObject <MenuTracker>
+ (MenuPresenter*)sharedPresenter;
@end
