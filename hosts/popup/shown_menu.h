// The work of the command around a menu that is shown on the screen. Main thread.
#pragma once

#include <AppKit/AppKit.h>
#include <host/menu_stage.h>

#include "command/command_line.h"

// The place for the menu: the requested point, else the pointer; in AppKit's screen coordinates. In
// a Wayland session the stage knows the pointer. It may be null.
NSPoint popup_point(const MenuRequest& request, const PreparedMenuStage* stage);

// Closes the open menu when a signal arrives.
@interface MenuEnder : NSObject {
  @private
    NSFileHandle* _signals;
    int _ends[2];
}
- (void)watchForSignals;
- (void)stop;
@end
