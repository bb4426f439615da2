// The source of file drags out of menus: a view in its own window, which is never shown. Main
// thread.
#pragma once

#include <AppKit/AppKit.h>

struct dv_tree_t;

@interface DVDragView : NSView {
  @private
    dv_tree_t* theDragTarget;  // owned
}
// A copy of the element that the next mouseDown: drags, or null. mouseDown: clears it.
- (dv_tree_t*)theDragTarget;
// Copies the element.
- (void)setTheDragTarget:(dv_tree_t*)target;
@end
