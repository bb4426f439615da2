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
// With an image the disc is gone for good; with nil it is back, but stands still.
- (void)setImage:(NSImage*)image;
@end
