// A menu of several levels with items of every kind, whose delegate checks that each level closes
// as often as it opens, and that a pick comes when all are closed.
#pragma once

#include <AppKit/AppKit.h>

#include "input.h"

@interface TriedMenu : NSObject {
  @private
    NSMenu* _root;
    NSMutableArray* _open;
    int _picks;
}
// With `isLong` the root level is higher than the screen.
- (instancetype)initLong:(BOOL)isLong;
- (NSMenu*)root;
// Changes a menu as its host may at any time.
- (void)changeBy:(fuzz::Input&)input;
// Nothing is open, and at most one item has been picked since the last call.
- (void)checkClosed;
@end
