// An item that shows a turning disc until it is given an image. Main thread.
#pragma once

#include "items/DVMenuItem.h"
#include "items/disc_parts.h"

@interface DVImageItem : DVMenuItem <DVProgressUpdating> {
  @private
    NSView* view;                      // owned
    DVCircularProgressView* progress;  // owned
    NSTimer* theTimer;                 // nil while the disc does not turn
    BOOL hasImage;                     // carried, unused
}
- (instancetype)initWithTree:(dv_tree_t*)tree target:(id)target;
// An image removes the disc for good. With nil the disc is back, but does not turn.
- (void)setImage:(NSImage*)image;
@end
