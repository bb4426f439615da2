// What the command does around a menu that is shown on the screen. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "command/command_line.h"

// Where the menu goes: the point that was asked for, else the pointer; in AppKit's screen
// coordinates.
NSPoint PopupPoint(const MenuRequest& request);

// Ends the open menu when a signal comes.
@interface MenuEnder : NSObject {
  @private
    NSFileHandle* _signals;
    int _ends[2];
}
- (void)watchForSignals;
- (void)stop;
@end
