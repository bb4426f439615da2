// An item that shows a turning disc while it has no image. Main thread.
#pragma once

#include "items/DVMenuItem.h"
#include "items/disc_parts.h"

@interface DVProgressItem : DVMenuItem <DVProgressUpdating> {
  @private
    NSView* view;                      // owned
    DVCircularProgressView* progress;  // owned
    NSTimer* theTimer;                 // nil while the disc does not turn
}
- (instancetype)initWithTree:(dv_tree_t*)tree target:(id)target;
- (void)setImage:(NSImage*)image;
// Calling either one a second time does nothing.
- (void)start;
- (void)stop;
@end
